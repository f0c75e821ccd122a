// Slow and obvious ways to do what the library does with texts.

#ifndef TESTS_SLOW_TEXT_H
#define TESTS_SLOW_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>

#include "StringUtil.h"
#include "UnicodeConversion.h"

// Reads the first character of `bytes` bit by bit.
inline ConversionResult readSlowly(const std::string& bytes, uint32_t& value, long& length) {
    static const uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<uint8_t>(bytes[0]);
    int ones = 0;
    while (ones < 6 && (lead << ones & 0x80)) ++ones;
    length = ones == 0 ? 1 : ones;
    if (static_cast<long>(bytes.size()) < length) return sourceExhausted;
    if (ones == 1 || ones > 4) return sourceIllegal;

    value = lead & (0xFFu >> (ones + 1));
    for (const char byte : bytes.substr(1, static_cast<std::size_t>(length) - 1)) {
        if ((byte & 0xC0) != 0x80) return sourceIllegal;
        value = value << 6 | (byte & 0x3F);
    }
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    const bool legal = value >= smallest[length] && value <= 0x10FFFF && !surrogate;
    return legal ? conversionOK : sourceIllegal;
}

// Whether a text matches a pattern with wildcards.
inline bool matchSlowly(const char* pattern, const char* text) {
    const bool mayBeNothing = *pattern == '*' || *pattern == '?';
    if (mayBeNothing && matchSlowly(pattern + 1, text)) return true;
    if (*pattern == '\0' || *text == '\0') return *pattern == *text;
    if (!mayBeNothing && *pattern != *text) return false;
    return matchSlowly(*pattern == '*' ? pattern : pattern + 1, text + 1);
}

// The cleaned text, the count of replaced bytes, which starts at 100, and the consumed bytes.
using Cleaned = std::tuple<std::string, int, std::size_t>;

inline Cleaned clean(const char* text, std::size_t length) {
    int replaced = 100, consumed = -1;
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text);
    const unsigned char* const cleaned =
        Dictionary::Escape(bytes, static_cast<int>(length), &replaced, &consumed);
    return {reinterpret_cast<const char*>(cleaned), replaced, consumed};
}

// The same for a text without references.
inline Cleaned cleanSlowly(std::string text, std::size_t length) {
    int replaced = 100;
    std::size_t i = 0;
    for (; i < length; ++i) {
        const int byte = text[i] & 0xFF, next = text[i + 1] & 0xFF;
        if (byte > 0x80 && byte < 0xFE && next >= 0x40 && next < 0xFF && next != 0x7F) {
            ++i;
        } else if ((byte < 0x20 && std::string("\3\4\t\n\r").find(text[i]) == std::string::npos) ||
                   byte > 0x7E) {
            text[i] = ' ';
            ++replaced;
        }
    }
    return {text.substr(0, i), replaced, i};
}

#endif
