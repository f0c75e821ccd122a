// Helper, not installed: a line of text that can hold any bytes, escaped.

#ifndef DICTIONARY_ESCAPED_LINE_H
#define DICTIONARY_ESCAPED_LINE_H

#include <algorithm>
#include <cinttypes>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "Utf8Decoder.h"

namespace Dictionary {

// Builds a line in a buffer that may be too small for it, and counts all of its bytes.
class EscapedLine {
public:
    EscapedLine(char* buffer, std::size_t size)
        : m_buffer(buffer), m_size(buffer == nullptr ? 0 : size) {}

    void add(std::string_view bytes) {
        for (const char byte : bytes) {
            if (m_length + 1 < m_size) m_buffer[m_length] = byte;
            ++m_length;
        }
    }

    void addNumber(const char* before, std::int64_t number) {
        char digits[32];
        std::snprintf(digits, sizeof digits, "%" PRId64, number);
        add(before);
        add(digits);
    }

    // Each byte that is not part of a printable character becomes \x and two digits.
    void addEscaped(std::string_view text) {
        decodeAllUtf8(text.data(), text.size(), kIllegal,
                      [&](std::int32_t code, std::size_t start, std::uint32_t length) {
                          const std::string_view character = text.substr(start, length);
                          isPrintable(code) ? add(character) : addInDigits(character);
                      });
    }

    // Ends the line with a NUL, but not inside a character. Returns the length of the whole line.
    std::size_t finish() {
        if (m_size == 0) return m_length;
        std::size_t end = std::min(m_length, m_size - 1);
        if (end < m_length) end = wholeCharacters(end);
        m_buffer[end] = '\0';
        return m_length;
    }

private:
    static constexpr std::int32_t kIllegal = -1;

    static bool isPrintable(std::int32_t code) {
        constexpr std::int32_t kDelete = 0x7F, kFirstAfterControls = 0xA0;
        return (code >= ' ' && code < kDelete) || code >= kFirstAfterControls;
    }

    void addInDigits(std::string_view bytes) {
        for (const char byte : bytes) {
            char digits[8];
            std::snprintf(digits, sizeof digits, "\\x%02X", static_cast<unsigned char>(byte));
            add(digits);
        }
    }

    // How many of the first `end` bytes are whole characters.
    std::size_t wholeCharacters(std::size_t end) const {
        return decodeUtf8(m_buffer, end, [](std::int32_t, std::size_t, std::uint32_t) {});
    }

    char* m_buffer;
    std::size_t m_size;
    std::size_t m_length = 0;
};

}  // namespace Dictionary

#endif
