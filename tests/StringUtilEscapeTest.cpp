#include <gtest/gtest.h>

#include <map>
#include <string>

#include "BoundaryText.h"
#include "SlowText.h"

namespace {

TEST(Escape, CleansEveryOneAndTwoBytes) {
    for (int word = 0; word < 0x10000; ++word) {
        const std::string text = {static_cast<char>(word >> 8), static_cast<char>(word), '\0'};
        const char* const placed = placeAtPageEnd(text);
        for (const std::size_t length : {0u, 1u, 2u}) {
            ASSERT_EQ(clean(placed, length), cleanSlowly(text, length)) << std::hex << word;
        }
    }
}

void expectOutput(const std::string& text, const std::string& expected) {
    EXPECT_EQ(clean(placeAtPageEnd(text), text.size()), Cleaned(expected, 100, text.size()));
}

TEST(Escape, ReplacesTheKnownReferencesThatHaveEightBytes) {
    std::map<int, std::string> known = {
        {12289, ","}, {65292, ","},  {65534, " "}, {65535, " "}, {12290, "."},  {65294, "."},
        {65306, ":"}, {65288, "("},  {65289, ")"}, {8216, "'"},  {8217, "'"},   {8242, "'"},
        {8805, ">="}, {8804, "<="},  {8220, "\""}, {8221, "\""}, {12318, "\""}, {8243, "\""},
        {65374, "~"}, {12319, "\""}, {8211, "-"},  {65293, "-"}};
    for (int surrogate = 0xD800; surrogate <= 0xDFFF; ++surrogate) known[surrogate] = " ";
    for (int number = 100; number <= 99999; ++number) {
        const std::string reference = "&#" + std::to_string(number) + ";";
        const bool isKnown = known.count(number) != 0;
        for (std::size_t left = isKnown ? 0 : 2; left <= (isKnown ? 8 : 2); ++left) {
            const bool isReplaced = isKnown && reference.size() + left >= 8;
            const std::string rest(left, '7');
            expectOutput(reference + rest, (isReplaced ? known[number] : reference) + rest);
        }
    }
    expectOutput("&#08805;", ">=");
    for (const char* text : {"&#12;45678", "&#652920;89", "&#65292 ;8", "&8805&#;", "a&#8211;"}) {
        expectOutput(text, text);
    }
}

TEST(Escape, StopsAfterTheStepThatFillsTheBuffer) {
    const std::string nearlyFull(4094, 'a');
    const std::string longest = nearlyFull + "&#65000;";
    EXPECT_EQ(clean((longest + "bc").c_str(), 4104), Cleaned(longest, 100, 4102));
    EXPECT_EQ(clean((nearlyFull + "bc").c_str(), 4096), Cleaned(nearlyFull + "b", 100, 4095));
}

}  // namespace
