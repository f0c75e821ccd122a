// Texts on the edges of UTF-8 and of memory.

#ifndef BOUNDARY_TEXT_H
#define BOUNDARY_TEXT_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <string>

// Calls `visit` with `text` followed by every sequence of `count` bytes at which a rule of UTF-8
// changes.
template <typename Visit>
void forEachBoundaryText(std::string text, int count, const Visit& visit) {
    static const std::string bytes(
        "\x00\x41\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0"
        "\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5\xF7\xF8\xFB\xFC\xFF",
        29);
    if (count == 0) return visit(text);
    for (const char byte : bytes) forEachBoundaryText(text + byte, count - 1, visit);
}

// Bytes that are followed by a page that cannot be read.
class GuardedBytes {
public:
    explicit GuardedBytes(const std::string& bytes) {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t readable = (bytes.size() + page - 1) / page * page;
        m_mapped = readable + page;
        m_pages = static_cast<char*>(
            mmap(nullptr, m_mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(m_pages + readable, page, PROT_NONE);
        m_bytes = m_pages + readable - bytes.size();
        std::memcpy(m_bytes, bytes.data(), bytes.size());
    }
    ~GuardedBytes() { munmap(m_pages, m_mapped); }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    char* data() const { return m_bytes; }

private:
    std::size_t m_mapped;
    char* m_pages;
    char* m_bytes;
};

// Copies `text` to the end of a page that is followed by one that cannot be read. The next call
// overwrites it.
inline const char* placeAtPageEnd(const std::string& text) {
    static char* const end = [] {
        const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        void* pages =
            mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        char* const middle = static_cast<char*>(pages) + size;
        return mprotect(middle, size, PROT_NONE) == 0 ? middle : nullptr;
    }();
    return static_cast<char*>(std::memcpy(end - text.size(), text.data(), text.size()));
}

#endif
