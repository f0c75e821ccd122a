#include "Utf8String.h"

#include <cstdint>

#include "Utf8Decoder.h"
#include "Utf8Encoder.h"

namespace Dictionary::Node {

namespace {

constexpr std::size_t kMostBytesOfUnit = 3;
constexpr char kIllegalByte = '\xFF';

// Encodes the character at units[i], moves `i` past it and returns where its bytes end.
char* putCharacter(std::u16string_view units, std::size_t& i, char* to, bool& isWellFormed) {
    const char16_t unit = units[i++];
    if (!isSurrogate(unit)) return writeUtf8(unit, to);
    if (isHighSurrogate(unit) && i < units.size() && isLowSurrogate(units[i])) {
        return writeUtf8(codeOfPair(unit, units[i++]), to);
    }
    isWellFormed = false;
    *to = kIllegalByte;
    return to + 1;
}

// Returns where the bytes end. `isWellFormed` becomes false at an unpaired surrogate.
char* encode(std::u16string_view units, char* to, bool& isWellFormed) {
    for (std::size_t i = 0; i < units.size();) to = putCharacter(units, i, to, isWellFormed);
    return to;
}

}  // namespace

Utf8String::Utf8String(std::u16string_view units)
    : m_bytes(new char[kMostBytesOfUnit * units.size()]) {
    const char* const end = encode(units, m_bytes.get(), m_isWellFormed);
    m_size = static_cast<std::size_t>(end - m_bytes.get());
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

Utf8Strings::Utf8Strings(const Utf16Texts& texts)
    : m_bytes(new char[kMostBytesOfUnit * texts.units()]) {
    m_views.reserve(texts.size());
    bool isWellFormed = true;
    char* begin = m_bytes.get();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        char* const end = encode(texts[i], begin, isWellFormed);
        m_views.push_back({begin, static_cast<std::size_t>(end - begin)});
        begin = end;
    }
}

}  // namespace Dictionary::Node
