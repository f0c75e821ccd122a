#include "Printable.h"

#include <algorithm>
#include <iterator>

namespace dictool {

namespace {

constexpr unsigned char kFirstMultiByte = 0x80;

// First bytes of legal characters of several bytes, with what may follow: no overlong form, no
// surrogate, nothing above U+10FFFF.
constexpr unsigned char kTailFirst = 0x80, kTailLast = 0xBF;
constexpr struct {
    unsigned char first, last;
    unsigned char secondFirst, secondLast;
    std::size_t bytes;
} kLeads[] = {
    {0xC2, 0xDF, kTailFirst, kTailLast, 2}, {0xE0, 0xE0, 0xA0, kTailLast, 3},
    {0xE1, 0xEC, kTailFirst, kTailLast, 3}, {0xED, 0xED, kTailFirst, 0x9F, 3},
    {0xEE, 0xEF, kTailFirst, kTailLast, 3}, {0xF0, 0xF0, 0x90, kTailLast, 4},
    {0xF1, 0xF3, kTailFirst, kTailLast, 4}, {0xF4, 0xF4, kTailFirst, 0x8F, 4},
};

// In UTF-8, which is in the order of the code points.
constexpr struct {
    std::string_view first;
    std::string_view last;
} kUnprintable[] = {
    {"\x01", "\x1F"},
    {"\x7F", "\u009F"},
    {"\u2028", "\u202E"},
    {"\u2066", "\u2069"},
};

// Of one character.
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
    const auto byteAt = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char first = byteAt(0);
    if (first < kFirstMultiByte) return 1;
    const auto* const lead =
        std::find_if(std::begin(kLeads), std::end(kLeads),
                     [&](const auto& row) { return row.first <= first && first <= row.last; });
    if (lead == std::end(kLeads) || text.size() < lead->bytes) return 0;
    if (byteAt(1) < lead->secondFirst || byteAt(1) > lead->secondLast) return 0;
    for (std::size_t at = 2; at < lead->bytes; ++at) {
        if (byteAt(at) < kTailFirst || byteAt(at) > kTailLast) return 0;
    }
    return lead->bytes;
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
