#include "ResultText.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <new>

namespace Dictionary {

namespace {

constexpr std::size_t kFirstCapacity = 256;
constexpr std::size_t kMaxDigits = std::numeric_limits<std::size_t>::digits10 + 1;
constexpr char kFieldEnd = '\t';

char* put(char* out, std::string_view text) {
    return std::copy(text.begin(), text.end(), out);
}

}  // namespace

// Room for `bytes` more bytes after the text so far.
char* ResultText::room(std::size_t bytes) {
    if (bytes > m_capacity - m_size) {
        const std::size_t capacity = std::max({kFirstCapacity, m_size + bytes, 2 * m_capacity});
        auto* grown = static_cast<char*>(std::realloc(m_text.get(), capacity));
        if (grown == nullptr) throw std::bad_alloc();
        static_cast<void>(m_text.release());
        m_text.reset(grown);
        m_capacity = capacity;
    }
    return m_text.get() + m_size;
}

void ResultText::add(std::string_view word, std::size_t position, std::string_view feature) {
    constexpr std::size_t kMarks = 3;
    char* out = room(word.size() + kMaxDigits + feature.size() + kMarks);
    out = put(out, word);
    if (m_withFeatures) {
        *out++ = '/';
        out = std::to_chars(out, out + kMaxDigits, position).ptr;
        *out++ = ':';
        out = put(out, feature);
    }
    *out++ = kFieldEnd;
    m_size = static_cast<std::size_t>(out - m_text.get());
}

char* ResultText::release() {
    *room(1) = '\0';
    return m_text.release();
}

}  // namespace Dictionary
