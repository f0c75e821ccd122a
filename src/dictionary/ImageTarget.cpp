#include "ImageTarget.h"

#include <cstring>
#include <new>

namespace Dictionary {

void BufferTarget::create(std::size_t imageBytes) {
    m_bytes.reset(static_cast<char*>(std::malloc(imageBytes)));
    if (m_bytes == nullptr) throw std::bad_alloc();
}

void BufferTarget::write(const char* bytes, std::size_t size) {
    std::memcpy(m_bytes.get() + m_written, bytes, size);
    m_written += size;
}

void BufferTarget::commit() {
    m_buffer = {m_bytes.release(), m_written};
}

}  // namespace Dictionary
