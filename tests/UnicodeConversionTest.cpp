#include "UnicodeConversion.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <tuple>
#include <vector>

#include "BoundaryText.h"
#include "SlowText.h"

namespace {

template <typename Source, typename Target>
using Conversion = ConversionResult (*)(const Source**, const Source*, Target**, Target*,
                                        ConversionFlags);

// The result, the number of units consumed and what was produced.
template <typename Target>
using Outcome = std::tuple<int, long, std::vector<Target>>;

template <typename Source, typename Target>
Outcome<Target> convert(Conversion<Source, Target> conversion, const std::vector<Source>& source,
                        std::size_t room, ConversionFlags flags = strictConversion) {
    std::vector<Target> output(room);
    const Source* from = source.data();
    Target* to = output.data();
    const auto result = conversion(&from, from + source.size(), &to, to + room, flags);
    output.resize(static_cast<std::size_t>(to - output.data()));
    return {result, from - source.data(), output};
}

// Makes a conversion of the whole source out of one that converts one character per call.
template <auto kConvertOne, typename Source, typename Target>
ConversionResult repeated(const Source** source, const Source* sourceEnd, Target** target,
                          Target* targetEnd, ConversionFlags flags) {
    ConversionResult result = conversionOK;
    while (result == conversionOK && *source < sourceEnd) {
        result = kConvertOne(source, sourceEnd, target, targetEnd, flags);
    }
    return result;
}

// Checks that `source` is converted to `target`, and that with less room the conversion can be
// continued.
template <typename Source, typename Target>
void checkRooms(Conversion<Source, Target> conversion, const std::vector<Source>& source,
                const std::vector<Target>& target, std::size_t room) {
    for (; room < target.size(); ++room) {
        auto [result, consumed, output] = convert(conversion, source, room);
        const std::vector<Source> rest(source.begin() + consumed, source.end());
        const auto tail = std::get<2>(convert(conversion, rest, target.size()));
        output.insert(output.end(), tail.begin(), tail.end());
        EXPECT_EQ(std::tie(result, output), std::make_tuple(targetExhausted, target)) << room;
    }
    const Outcome<Target> done(conversionOK, static_cast<long>(source.size()), target);
    EXPECT_EQ(convert(conversion, source, room), done);
}

TEST(UnicodeConversion, ConvertsEveryCharacterThereAndBack) {
    std::vector<uint32_t> all(0x110000);
    std::iota(all.begin(), all.end(), 0);
    all.erase(all.begin() + 0xD800, all.begin() + 0xE000);
    const std::vector<uint32_t> few = {0x61, 0xE9, 0x4E2D, 0x1F600, 0x61};
    for (const auto& utf32 : {all, few}) {
        const std::size_t room = 4 * utf32.size();
        const std::size_t smallest = utf32 == few ? 0 : room;
        const auto utf16 = std::get<2>(convert(ConvertUTF32toUTF16, utf32, room));
        const auto utf8 = std::get<2>(convert(ConvertUTF16toUTF8, utf16, room));
        checkRooms(ConvertUTF32toUTF16, utf32, utf16, smallest);
        checkRooms(ConvertUTF16toUTF32, utf16, utf32, smallest);
        checkRooms(ConvertUTF16toUTF8, utf16, utf8, smallest);
        checkRooms(ConvertUTF8toUTF16, utf8, utf16, smallest);
        checkRooms(repeated<ConvertUTF32toUTF8, uint32_t, uint8_t>, utf32, utf8, smallest);
        checkRooms(repeated<ConvertUTF8toUTF32, uint8_t, uint32_t>, utf8, utf32, smallest);
    }
}

TEST(UnicodeConversion, JudgesUtf8LikeASlowReader) {
    const auto check = [](const std::string& text) {
        if (HasFatalFailure()) return;
        const std::vector<uint8_t> bytes(text.begin(), text.end());
        Outcome<uint32_t> expected(conversionOK, 0, {0});
        auto& [result, length, output] = expected;
        result = readSlowly(text, output[0], length);
        ASSERT_EQ(isLegalUTF8Sequence(bytes.data(), bytes.data() + bytes.size()), result == 0);
        if (result != conversionOK) expected = {result, 0, {}};
        ASSERT_EQ(convert(ConvertUTF8toUTF32, bytes, 1), expected);
    };
    for (int count = 1; count <= 4; ++count) forEachBoundaryText("", count, check);
    for (int byte = 0; byte < 256; ++byte) check({static_cast<char>(byte)});
    for (const char* text : {"\xFB\x80\x80\x80\x80", "\xFC\x80\x80\x80\x80"}) check(text);
    const auto* const unreadable = reinterpret_cast<const uint8_t*>(placeAtPageEnd(""));
    EXPECT_EQ(isLegalUTF8Sequence(unreadable, unreadable), 0);
}

template <typename Source, typename Target>
void check(Conversion<Source, Target> conversion, ConversionFlags flags,
           const std::vector<Source>& source, const Outcome<Target>& expected) {
    EXPECT_EQ(convert(conversion, source, 9, flags), expected) << testing::PrintToString(source);
}

TEST(UnicodeConversion, FollowsTheFlagsAtIllegalValues) {
    constexpr auto strict = strictConversion;
    constexpr auto lenient = lenientConversion;
    check(ConvertUTF32toUTF16, strict, {'a', 0xD800, 'b'}, {sourceIllegal, 1, {'a'}});
    check(ConvertUTF32toUTF16, lenient, {'a', 0xDFFF}, {conversionOK, 2, {'a', 0xFFFD}});
    check(ConvertUTF32toUTF16, strict, {'a', 0x110000, 'b'}, {sourceIllegal, 3, {'a', 'b'}});
    check(ConvertUTF32toUTF16, lenient, {0x110000}, {conversionOK, 1, {0xFFFD}});
    EXPECT_EQ(std::get<0>(convert(ConvertUTF32toUTF16, {0xD800}, 0)), targetExhausted);

    check(ConvertUTF32toUTF8, strict, {}, {conversionOK, 0, {}});
    check(ConvertUTF32toUTF8, strict, {'a', 'b'}, {conversionOK, 1, {'a'}});
    check(ConvertUTF32toUTF8, strict, {0xDFFF}, {sourceIllegal, 0, {}});
    check(ConvertUTF32toUTF8, lenient, {0xDFFF}, {conversionOK, 1, {0xED, 0xBF, 0xBF}});
    check(ConvertUTF32toUTF8, lenient, {0xFFFFFFFF}, {sourceIllegal, 1, {0xEF, 0xBF, 0xBD}});

    check(ConvertUTF16toUTF32, strict, {'a', 0xD800, 0xD800}, {sourceIllegal, 1, {'a'}});
    check(ConvertUTF16toUTF32, lenient, {0xD800, 'a'}, {conversionOK, 2, {0xD800, 'a'}});
    check(ConvertUTF16toUTF32, lenient, {'a', 0xDBFF}, {sourceExhausted, 1, {'a'}});
    check(ConvertUTF16toUTF8, lenient, {0xDC00}, {conversionOK, 1, {0xED, 0xB0, 0x80}});

    check(ConvertUTF8toUTF16, lenient, {'a', 0xED, 0xA0, 0x80}, {sourceIllegal, 1, {'a'}});
    check(ConvertUTF8toUTF16, lenient, {'a', 0xF0, 0x9F, 0x98}, {sourceExhausted, 1, {'a'}});
    check(ConvertUTF8toUTF32, strict, {}, {conversionOK, 0, {}});
    check(ConvertUTF8toUTF32, strict, {'a', 'b'}, {conversionOK, 1, {'a'}});
}

}  // namespace
