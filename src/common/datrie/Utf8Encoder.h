// Helper, not installed: code points in UTF-8.

#ifndef DICTIONARY_UTF8_ENCODER_H
#define DICTIONARY_UTF8_ENCODER_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace Dictionary {

// How many bytes `code` takes. It must be at most U+10FFFF.
inline std::size_t utf8Length(std::int32_t code) {
    constexpr std::int32_t kTwoBytes = 0x80, kThreeBytes = 0x800, kFourBytes = 0x10000;
    return 1u + (code >= kTwoBytes) + (code >= kThreeBytes) + (code >= kFourBytes);
}

// Writes the bytes of `code`, three for a surrogate, and returns where they end.
inline char* writeUtf8(std::int32_t code, char* out) {
    const auto put = [&](std::int32_t mark, std::int32_t bits) {
        *out++ = static_cast<char>(mark | bits);
    };
    const auto putTail = [&](int shift) { put(0x80, code >> shift & 0x3F); };
    switch (utf8Length(code)) {
        case 1:
            put(0, code);
            return out;
        case 2:
            put(0xC0, code >> 6);
            break;
        case 3:
            put(0xE0, code >> 12);
            putTail(6);
            break;
        default:
            put(0xF0, code >> 18);
            putTail(12);
            putTail(6);
    }
    putTail(0);
    return out;
}

// Appends the bytes of `code` to `text`.
inline void appendUtf8(std::int32_t code, std::string& text) {
    constexpr std::size_t kMostBytes = 4;
    char bytes[kMostBytes];
    text.append(bytes, writeUtf8(code, bytes));
}

}  // namespace Dictionary

#endif
