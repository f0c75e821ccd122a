#include "Utf8String.h"

#include <cstdint>

#include "Utf8Decoder.h"
#include "Utf8Encoder.h"

namespace Dictionary::Node {

namespace {

constexpr std::size_t kMostBytesOfUnit = 3;
constexpr char kIllegalByte = '\xFF';

bool isSurrogate(char16_t unit) {
    return isHighSurrogate(unit) || isLowSurrogate(unit);
}

}  // namespace

Utf8String::Utf8String(const std::u16string& units)
    : m_bytes(new char[kMostBytesOfUnit * units.size()]) {
    char* to = m_bytes.get();
    for (std::size_t i = 0; i < units.size();) to = putCharacter(units, i, to);
    m_size = static_cast<std::size_t>(to - m_bytes.get());
}

// Encodes the character at units[i], moves `i` after it and returns where its bytes end. A NUL
// follows the last unit.
char* Utf8String::putCharacter(const std::u16string& units, std::size_t& i, char* to) {
    const char16_t unit = units[i++];
    if (!isSurrogate(unit)) return writeUtf8(unit, to);
    if (isHighSurrogate(unit) && isLowSurrogate(units[i])) {
        return writeUtf8(codeOfPair(unit, units[i++]), to);
    }
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

Utf8Strings::Utf8Strings(const std::vector<std::u16string>& texts)
    : m_texts(texts.begin(), texts.end()), m_views(m_texts.begin(), m_texts.end()) {}

}  // namespace Dictionary::Node
