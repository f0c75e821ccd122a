// Helper, not installed: code points in UTF-8.

#ifndef DICTIONARY_UTF8_ENCODER_H
#define DICTIONARY_UTF8_ENCODER_H

#include <cstdint>
#include <string>

namespace Dictionary {

// Appends the bytes of the character `code` to `text`.
inline void appendUtf8(std::int32_t code, std::string& text) {
    constexpr std::int32_t kTwoBytes = 0x80, kThreeBytes = 0x800, kFourBytes = 0x10000;
    const auto append = [&](std::int32_t mark, std::int32_t bits) {
        text += static_cast<char>(mark | bits);
    };
    const auto appendTail = [&](int shift) { append(0x80, code >> shift & 0x3F); };
    if (code < kTwoBytes) return append(0, code);
    if (code < kThreeBytes) {
        append(0xC0, code >> 6);
    } else if (code < kFourBytes) {
        append(0xE0, code >> 12);
        appendTail(6);
    } else {
        append(0xF0, code >> 18);
        appendTail(12);
        appendTail(6);
    }
    appendTail(0);
}

}  // namespace Dictionary

#endif
