// Helper, not installed: the bytes of an open image.

#ifndef DICTIONARY_IMAGE_BYTES_H
#define DICTIONARY_IMAGE_BYTES_H

#include <cstddef>
#include <string_view>
#include <utility>

#include "Descriptor.h"

namespace Dictionary {

// Bytes to read: the object's own pages, or the caller's memory. Throws a SystemRefusal with the
// errno if the system refuses pages or a read.
class ImageBytes {
public:
    struct SystemRefusal {
        int error;
    };

    static ImageBytes borrow(std::string_view bytes) { return {bytes.data(), bytes.size(), false}; }
    static ImageBytes map(const Descriptor& file, std::size_t size);
    static ImageBytes copy(const Descriptor& file, std::size_t size);
    static ImageBytes copy(std::string_view bytes);

    ImageBytes(ImageBytes&& other) noexcept
        : m_bytes(other.m_bytes),
          m_size(other.m_size),
          m_isOwner(std::exchange(other.m_isOwner, false)) {}
    ImageBytes& operator=(ImageBytes&&) = delete;
    ~ImageBytes();

    std::string_view view() const { return {m_bytes, m_size}; }

private:
    ImageBytes(const char* bytes, std::size_t size, bool isOwner)
        : m_bytes(bytes), m_size(size), m_isOwner(isOwner) {}

    // New pages. They are filled by `fill(bytes)` and can no longer be written after that.
    template <class Fill>
    static ImageBytes copyBy(std::size_t size, Fill fill);

    const char* m_bytes;
    std::size_t m_size;
    bool m_isOwner;
};

}  // namespace Dictionary

#endif
