// Bytes that grow as they are read. New room is not filled first.

#ifndef DICTOOL_BUFFER_H
#define DICTOOL_BUFFER_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace dictool {

class Buffer {
public:
    Buffer() = default;
    explicit Buffer(std::string_view text) { append(text); }

    std::string_view text() const { return {m_bytes.get(), m_size}; }
    const char* data() const { return m_bytes.get(); }
    std::size_t size() const { return m_size; }

    // Room for `size` more bytes, which take() adds. The capacity at least doubles when it grows,
    // so that a byte is moved less than twice on average.
    char* room(std::size_t size) {
        if (m_capacity - m_size < size) moveTo(std::max(m_size + size, 2 * m_capacity));
        return m_bytes.get() + m_size;
    }
    void take(std::size_t size) { m_size += size; }

    void append(std::string_view text) {
        if (text.empty()) return;
        std::memcpy(room(text.size()), text.data(), text.size());
        take(text.size());
    }
    void cutOff(std::size_t size) { m_size = size; }

private:
    void moveTo(std::size_t capacity) {
        std::unique_ptr<char[]> bytes(new char[capacity]);
        if (m_size > 0) std::memcpy(bytes.get(), m_bytes.get(), m_size);
        m_bytes = std::move(bytes);
        m_capacity = capacity;
    }

    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

}  // namespace dictool

#endif
