// Compares the coder and the conversions with a reader of one character at a time, and the
// conversions with each other, there and back.

#include <cstring>

#include "BoundaryText.h"
#include "Fuzz.h"
#include "SlowText.h"
#include "UTF8Coder.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Wide = std::vector<std::uint16_t>;
using Codes = std::vector<std::uint32_t>;

template <class Unit>
struct Converted {
    ConversionResult result;
    std::size_t used;
    std::vector<Unit> units;
};

// Converts as much of a source as possible, however much one call converts.
template <class Source, class Target>
Converted<Target> convert(ConversionResult (*conversion)(const Source**, const Source*, Target**,
                                                         Target*, ConversionFlags),
                          const std::vector<Source>& source, ConversionFlags flags) {
    std::vector<Target> room(4 * source.size() + 1);
    const Source* from = source.data();
    const Source* const end = from + source.size();
    Target* to = room.data();
    ConversionResult result = conversionOK;
    while (from != end && result == conversionOK) {
        result = conversion(&from, end, &to, room.data() + room.size(), flags);
    }
    room.resize(static_cast<std::size_t>(to - room.data()));
    return {result, static_cast<std::size_t>(from - source.data()), room};
}

// The legal characters that `text` begins with. Drops the rest of `text`.
Codes readLegal(std::string& text) {
    Codes codes;
    std::size_t at = 0;
    while (at < text.size()) {
        std::uint32_t value = 0;
        long units = 0;
        if (readSlowly(text.substr(at), value, units) != conversionOK) break;
        codes.push_back(value);
        at += static_cast<std::size_t>(units);
    }
    text.resize(at);
    return codes;
}

void requireConversions(const std::string& text, ConversionFlags flags) {
    std::string legal = text;
    const Codes codes = readLegal(legal);
    const Bytes bytes(text.begin(), text.end()), prefix(legal.begin(), legal.end());
    const auto narrow = convert(ConvertUTF8toUTF32, bytes, flags);
    const auto wide = convert(ConvertUTF8toUTF16, bytes, flags);
    require(narrow.units == codes && narrow.used == legal.size(), "characters are read");
    require(narrow.result == wide.result && wide.used == legal.size(), "and read as far");
    require((narrow.result == conversionOK) == (legal == text), "and no farther");
    require(convert(ConvertUTF32toUTF16, codes, flags).units == wide.units, "two ways to UTF-16");
    require(convert(ConvertUTF16toUTF32, wide.units, flags).units == codes, "and back");
    require(convert(ConvertUTF16toUTF8, wide.units, flags).units == prefix, "and to UTF-8");
    require(convert(ConvertUTF32toUTF8, codes, flags).units == prefix, "straight, too");
}

// Takes any bytes as UTF-16 and as UTF-32.
void requireAgreement(const std::string& bytes, ConversionFlags flags) {
    Wide wide(bytes.size() / sizeof(std::uint16_t));
    Codes values(bytes.size() / sizeof(std::uint32_t));
    std::copy_n(bytes.data(), wide.size() * sizeof wide[0], reinterpret_cast<char*>(wide.data()));
    std::copy_n(bytes.data(), values.size() * sizeof values[0],
                reinterpret_cast<char*>(values.data()));
    const auto codes = convert(ConvertUTF16toUTF32, wide, flags);
    const auto narrow = convert(ConvertUTF16toUTF8, wide, flags);
    require(codes.result == narrow.result && codes.used == narrow.used, "UTF-16 is read alike");
    require(convert(ConvertUTF32toUTF8, codes.units, lenientConversion).units == narrow.units,
            "and the result is the same");
    const auto replaced = convert(ConvertUTF32toUTF16, values, lenientConversion);
    for (std::uint32_t& value : values) {
        if (value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) value = 0xFFFD;
    }
    require(convert(ConvertUTF16toUTF32, replaced.units, strictConversion).units == values,
            "what is no character is replaced");
}

void requireEncoding(std::string text, int length) {
    text.resize(std::min(text.find('\0'), text.size()));
    const char* const placed = placeAtPageEnd(text + '\0');
    if (length > 0) text.resize(std::min(text.size(), static_cast<std::size_t>(length)));
    const Codes expected = readLegal(text);
    Dictionary::CUTF8Coder coder;
    std::vector<int> codes;
    std::vector<Dictionary::SPOS> positions;
    const int result = coder.encodeString(placed, codes, positions, length);
    require(Codes(codes.begin(), codes.end()) == expected, "the legal characters are encoded");
    require(result == std::all_of(codes.begin(), codes.end(), [](int c) { return c < 0x10000; }),
            "the result shows the plane");
    int start = 0;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        char decoded[4];
        const int size = coder.decode(codes[i], decoded, sizeof decoded);
        require(text.compare(static_cast<std::size_t>(start), static_cast<std::size_t>(size),
                             decoded, static_cast<std::size_t>(size)) == 0,
                "a code is decoded");
        require(positions[i].start == start && positions[i].end == start + size - 1,
                "a position is the character's");
        start += size;
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const auto flags = input.below(2) == 0 ? strictConversion : lenientConversion;
    const int length = input.byte() - 1;
    const std::string text = input.text(300);
    requireConversions(text, flags);
    requireAgreement(text, flags);
    requireEncoding(text, length);
    return 0;
}
