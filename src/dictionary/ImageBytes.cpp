#include "ImageBytes.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace Dictionary {

namespace {

char* pages(int protection, int flags, int file, std::size_t size) {
    void* const bytes = mmap(nullptr, size, protection, flags, file, 0);
    if (bytes == MAP_FAILED) throw ImageBytes::SystemRefusal{errno};
    return static_cast<char*>(bytes);
}

void readAll(const Descriptor& file, char* bytes, std::size_t size) {
    for (std::size_t filled = 0; filled < size;) {
        const ssize_t got =
            callUninterrupted([&] { return read(file.number(), bytes + filled, size - filled); });
        if (got < 0) throw ImageBytes::SystemRefusal{errno};
        // The file has become shorter in the meantime.
        if (got == 0) throw ImageBytes::SystemRefusal{EIO};
        filled += static_cast<std::size_t>(got);
    }
}

}  // namespace

ImageBytes ImageBytes::map(const Descriptor& file, std::size_t size) {
    constexpr int kFlags = MAP_PRIVATE | MAP_POPULATE;
    return {pages(PROT_READ, kFlags, file.number(), size), size, true};
}

ImageBytes ImageBytes::copy(const Descriptor& file, std::size_t size) {
    return copyBy(size, [&](char* bytes) { readAll(file, bytes, size); });
}

ImageBytes ImageBytes::copy(std::string_view bytes) {
    return copyBy(bytes.size(), [&](char* room) { std::memcpy(room, bytes.data(), bytes.size()); });
}

template <class Fill>
ImageBytes ImageBytes::copyBy(std::size_t size, Fill fill) {
    constexpr int kFlags = MAP_PRIVATE | MAP_ANONYMOUS;
    char* const bytes = pages(PROT_READ | PROT_WRITE, kFlags, -1, size);
    ImageBytes copied(bytes, size, true);
    // Lookups read all over the image, so large pages help. If the system has none, these will do.
    madvise(bytes, size, MADV_HUGEPAGE);
    fill(bytes);
    if (mprotect(bytes, size, PROT_READ) != 0) throw SystemRefusal{errno};
    return copied;
}

ImageBytes::~ImageBytes() {
    if (m_isOwner) munmap(const_cast<char*>(m_bytes), m_size);
}

}  // namespace Dictionary
