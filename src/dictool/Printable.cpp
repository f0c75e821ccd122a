#include "Printable.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "Utf8Decoder.h"

namespace dictool {

namespace {

// In UTF-8, whose bytes are in the order of the code points.
constexpr struct {
    std::string_view first;
    std::string_view last;
} kUnprintable[] = {
    {"\x01", "\x1F"},
    {"\x7F", "\u009F"},
    {"\u2028", "\u202E"},
    {"\u2066", "\u2069"},
};

// Takes the bytes of one character.
bool isPrintable(std::string_view character) {
    return character[0] != '\0' &&
           std::none_of(std::begin(kUnprintable), std::end(kUnprintable), [&](const auto& range) {
               return range.first <= character && character <= range.last;
           });
}

void appendByte(std::string& out, char byte) {
    constexpr char kHex[] = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    out.append("\\x").append(1, kHex[value >> 4]).append(1, kHex[value & 0xF]);
}

}  // namespace

std::size_t characterBytes(std::string_view text) {
    constexpr std::uint8_t kFirstMultiByte = 0x80;
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    return *bytes < kFirstMultiByte ? 1 : Dictionary::decodeMultiByte(bytes, text.size()).length;
}

std::size_t countCharacters(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count) {
        text.remove_prefix(std::max<std::size_t>(characterBytes(text), 1));
    }
    return count;
}

std::string printable(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t bytes = characterBytes(text);
        const std::string_view character = text.substr(0, std::max<std::size_t>(bytes, 1));
        if (bytes > 0 && isPrintable(character)) {
            result += character;
        } else {
            for (const char byte : character) appendByte(result, byte);
        }
        text.remove_prefix(character.size());
    }
    return result;
}

}  // namespace dictool
