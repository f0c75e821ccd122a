#include "UTF8Coder.h"

#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <tuple>

#include "BoundaryText.h"
#include "UnicodeConversion.h"

namespace {

using Dictionary::CUTF8Coder;

// The result, then code, start, end and feature of each character.
using Encoding = std::pair<int, std::vector<std::tuple<int, int, int, int>>>;

Encoding encode(const char* text, int length) {
    std::vector<int> codes = {-1};
    std::vector<Dictionary::SPOS> positions = {{-1, -1, -1}};
    Encoding encoding(CUTF8Coder().encodeString(text, codes, positions, length), {});
    EXPECT_EQ(codes.size(), positions.size());
    for (std::size_t i = 0; i < codes.size(); ++i) {
        const Dictionary::SPOS& position = positions[i];
        encoding.second.emplace_back(codes[i], position.start, position.end, position.feature);
    }
    return encoding;
}

// The same, one character at a time.
Encoding encodeSlowly(const char* text, int length) {
    const auto size = static_cast<int>(std::strlen(text));
    const auto* const start = reinterpret_cast<const uint8_t*>(text);
    const uint8_t* const end = start + (0 < length && length < size ? length : size);
    Encoding encoding(1, {{-1, -1, -1, -1}});
    for (const uint8_t* cursor = start; cursor < end;) {
        const auto first = cursor - start;
        uint32_t code = 0;
        uint32_t* target = &code;
        if (ConvertUTF8toUTF32(&cursor, end, &target, target + 1, lenientConversion) != 0) break;
        if (code >= 0x10000) encoding.first = 0;
        encoding.second.emplace_back(code, first, cursor - start - 1, 0);
    }
    return encoding;
}

void check(const std::string& text, int length = -1) {
    if (testing::Test::HasFatalFailure()) return;
    const char* const placed = placeAtPageEnd(text + '\0');
    ASSERT_EQ(encode(placed, length), encodeSlowly(placed, length))
        << testing::PrintToString(text) << " length " << length;
}

TEST(UTF8Coder, EncodesEveryBoundaryTextAlsoBetweenAscii) {
    forEachBoundaryText("", 4, [](const std::string& text) { check(text); });
    const std::string letters = "abcdefghijklmnopqrst";
    for (std::size_t before = 0; before <= letters.size(); ++before) {
        for (std::size_t after = 0; after <= letters.size(); ++after) {
            const auto checkBetween = [&](const std::string& text) {
                check(text + letters.substr(0, after));
            };
            forEachBoundaryText(letters.substr(0, before), 2, checkBetween);
            checkBetween(letters.substr(0, before) + "\u4E2D\u00E9x\U0001F600");
        }
    }
}

TEST(UTF8Coder, EndsAtTheLengthGiven) {
    const std::string text = "abcdefgh\u00E9\u4E2D\U0001F600abcdefghijklmnopqrstu\u4E2D";
    for (int length = -1; length <= 99; ++length) check(text, length);
    for (const int length : {INT_MIN, INT_MAX}) check(text, length);
}

TEST(UTF8Coder, DecodesIntoAnyRoom) {
    const std::map<int, std::string> forms = {
        {0, {'\0'}}, {0xD800, "\xED\xA0\x80"}, {0x1F600, "\U0001F600"}, {0x110000, "\uFFFD"}};
    for (const auto& [code, form] : forms) {
        for (std::size_t room = 0; room <= 5; ++room) {
            const std::size_t written = form.size() <= room ? form.size() : 0;
            std::string buffer(6, '#');
            EXPECT_EQ(CUTF8Coder().decode(code, &buffer[0], static_cast<int>(room)), written);
            EXPECT_EQ(buffer, form.substr(0, written) + std::string(6 - written, '#'));
        }
    }
}

TEST(UTF8Coder, KnowsATextByItsFirstCharacterAndOneMoreByte) {
    for (const char* text : {"ab", "\u4E2D\xFF"}) EXPECT_TRUE(CUTF8Coder().isInMyCode(text));
    for (const char* text : {"", "a", "\x80x", "\u4E2D", "\xE4\xB8"}) {
        EXPECT_FALSE(CUTF8Coder().isInMyCode(text)) << text;
    }
    EXPECT_EQ(CUTF8Coder().getNumOfSingleWord(), 0x10000);
}

}  // namespace
