#include "Utf8Text.h"

#include <cstdint>

#include "Utf8Decoder.h"

namespace Dictionary::Node {

namespace {

constexpr std::size_t kMostBytesOfUnit = 3;
constexpr char32_t kUnpaired = 0x110000;
constexpr char kIllegalByte = '\xFF';

bool isSurrogate(char16_t unit) {
    return (unit & 0xF800u) == 0xD800u;
}

bool isPair(char16_t first, char16_t second) {
    return (first & 0xFC00u) == 0xD800u && (second & 0xFC00u) == 0xDC00u;
}

// Decodes the character at units[i] and moves `i` after it. A NUL follows the last unit.
char32_t takeCharacter(const std::u16string& units, std::size_t& i) {
    const char16_t unit = units[i++];
    if (!isSurrogate(unit)) return unit;
    if (!isPair(unit, units[i])) return kUnpaired;
    const char32_t upper = unit & 0x3FFu;
    const char32_t lower = units[i++] & 0x3FFu;
    return 0x10000 + (upper << 10 | lower);
}

// Returns where the next character goes.
char* putLegal(char32_t code, char* to) {
    if (code < 0x80) {
        *to = static_cast<char>(code);
        return to + 1;
    }
    constexpr char32_t kLeads[] = {0, 0xC0, 0xE0, 0xF0};
    const int following = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    *to++ = static_cast<char>(kLeads[following] | code >> 6 * following);
    for (int i = following - 1; i >= 0; --i) {
        *to++ = static_cast<char>(0x80u | (code >> 6 * i & 0x3Fu));
    }
    return to;
}

}  // namespace

Utf8Text::Utf8Text(const std::u16string& units)
    : m_bytes(new char[kMostBytesOfUnit * units.size()]) {
    char* to = m_bytes.get();
    for (std::size_t i = 0; i < units.size();) to = put(takeCharacter(units, i), to);
    m_size = static_cast<std::size_t>(to - m_bytes.get());
}

char* Utf8Text::put(char32_t code, char* to) {
    if (code != kUnpaired) return putLegal(code, to);
    m_isWellFormed = false;
    *to = kIllegalByte;
    return to + 1;
}

std::u16string unitsOf(std::string_view utf8) {
    constexpr std::int32_t kReplacement = 0xFFFD;
    std::u16string units;
    units.reserve(utf8.size());
    decodeAllUtf8(utf8.data(), utf8.size(), kReplacement,
                  [&](std::int32_t code, std::size_t, std::uint32_t) {
                      if (code < kBmpEnd) {
                          units += static_cast<char16_t>(code);
                          return;
                      }
                      units += static_cast<char16_t>(highSurrogateOf(code));
                      units += static_cast<char16_t>(lowSurrogateOf(code));
                  });
    return units;
}

Utf8Texts::Utf8Texts(const std::vector<std::u16string>& texts)
    : m_texts(texts.begin(), texts.end()), m_views(m_texts.begin(), m_texts.end()) {}

}  // namespace Dictionary::Node
