#include "StringUtil.h"

#include <algorithm>
#include <climits>
#include <filesystem>
#include <tuple>

#include "BoundaryText.h"
#include "SlowText.h"
#include "TemporaryFile.h"

namespace {

using namespace Dictionary;
using Strings = std::vector<std::string>;

TEST(StringUtil, ReadsSeparatorNotation) {
    const std::string plain = "\\12\\u006\\t\\0a9\\-65\\";
    EXPECT_EQ(getEscapeSeparator(plain), plain);
    EXPECT_EQ(getEscapeSeparator("\\300\\u9999\\\\009\\u\\0104\\u0065"), ",\017\\\t\\u\n4A");
    EXPECT_EQ(getEscapeSeparator("a\\000"), std::string("a\0", 2));
}

void expectPieces(const Strings& expected, int count, const Strings& pieces) {
    EXPECT_EQ(pieces, expected);
    EXPECT_EQ(count, static_cast<int>(expected.size()));
}

TEST(StringUtil, Splits) {
    Strings p = {"1", "2", "3"};
    expectPieces({"1", "2", "3"}, SplitStrByStr("a--b", "--", p), p);
    expectPieces({"a", "b"}, SplitStr(",a,,b,", ',', p), p);
    expectPieces({"a[b", "d"}, SplitStr("]x[a[b]c][][d]][b", '[', ']', p), p);
    expectPieces({"a", "c"}, SplitStr("|a|b|c|d", '|', '|', p), p);
    expectPieces({"2011", "02", "03", "04"}, SplitStr("2011-02-03 04::", " -:", p), p);
}

TEST(StringUtil, ConvertsCopies) {
    EXPECT_EQ(trim(" \t ") + trim("") + trim("\r\n a\tb\v \t"), "a\tb\v");
    EXPECT_EQ(String2Upper("az`{AZ\260a\340"), "AZ`{AZ\260A\340");
    EXPECT_EQ(String2Lower("AZ@[az\260A\300"), "az@[az\260a\300");
    EXPECT_EQ(Str2Int(" \n-7.5") + Str2Int("4294967297abc") + Str2Int("abc"), -6);
    EXPECT_EQ(Str2Long("99999999999999999999"), LONG_MAX);
    EXPECT_EQ(Int2Str(INT_MIN) + Long2Str(LONG_MAX), "-21474836489223372036854775807");
    EXPECT_EQ(IsDigitString("0123456789"), 0);
    for (const char* text : {"", "-7", "1 ", "\262"}) EXPECT_EQ(IsDigitString(text), -1);
}

TEST(StringUtil, ChangesInPlace) {
    std::string text = "abba";
    EXPECT_EQ(ReplaceChar(text, 'a', 'a') + ReplaceChar(text, 'a', 'x'), 4);
    EXPECT_EQ(ReplaceAll(text, "b", "bb") + ReplaceAll(text, "bbbbx", ""), 0);
    EXPECT_EQ(text, "x");
    text = "\1a\2\t\177\260\1\377\200\260";
    EXPECT_EQ(SimpleEscape(text), 10);
    EXPECT_EQ(text, " a \t\177\260 \377\200 ");
    text = "a\1z";
    EXPECT_EQ(SimpleEscape(text), 3);
    EXPECT_EQ(text, "a z");
    const std::size_t kept[] = {0, 1, 1, 3, 3, 5, 5, 5};
    for (std::size_t length = 0; length < 8; ++length) {
        text = "a\260\241\260b\260";
        EXPECT_EQ(GBKSubStr(text, length), kept[length]);
        EXPECT_EQ(text, std::string("a\260\241\260b", kept[length]));
    }
}

Strings wordsOver(const std::string& alphabet) {
    Strings words = {""};
    for (std::size_t i = 0; words[i].size() < 5; ++i) {
        for (const char letter : alphabet) words.push_back(words[i] + letter);
    }
    return words;
}

TEST(StringUtil, MatchesWildcards) {
    const Strings patterns = wordsOver("ab*?");
    std::string manyAsterisks = "b";
    for (const std::string& text : wordsOver("ab")) {
        const char* const placed = placeAtPageEnd(text + '\0');
        for (const std::string& pattern : patterns) {
            ASSERT_EQ(wildcard(pattern.c_str(), placed), matchSlowly(pattern.c_str(), placed))
                << pattern << " on " << text;
        }
        manyAsterisks = "*?a" + manyAsterisks;
    }
    EXPECT_EQ(wildcard(manyAsterisks.c_str(), std::string(100000, 'a').c_str()), 0);
}

TEST(StringUtil, CountsSelectedItems) {
    const std::tuple<const char*, int, const char*> cases[] = {
        {"", -1, "|"},
        {"update truncate delete ", 0, "It is del sql\n|"},
        {"update truncate t", 0, "Warning it is truncate sql \n|"},
        {"select update from t", 0, "It is update sql\n|"},
        {"SELECT a FROM t", -1, "|sql err,because no find string \"from\"\n"},
        {"a,b from t", -1, "|sql err,because no find string \"select\"\n"},
        {"from select a, b", 1, "|"},
        {"x,select f(g(a, b), c), ',(', ),d from t, u from ", 5, "|"}};
    for (const auto& [statement, count, messages] : cases) {
        const auto check = [&, text = statement, items = count] {
            EXPECT_EQ(GetItemNumFromSQL(text), items) << text;
        };
        const Printed printed = printedBy(check);
        EXPECT_EQ(printed.out + "|" + printed.err, messages);
    }
}

// The result, then daylight saving, date and time of day. Each is 7 if it was left alone.
using Fields = std::vector<int>;

Fields readTime(const char* text) {
    std::tm t{7, 7, 7, 7, 7, 7, 7, 7, 7, 0, nullptr};
    const bool result = Str2TimeStruct(text, &t);
    return {result, t.tm_isdst, t.tm_year, t.tm_mon, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec};
}

TEST(StringUtil, ReadsTimes) {
    EXPECT_EQ(readTime(""), Fields({0, 7, 7, 7, 7, 7, 7, 7}));
    EXPECT_EQ(readTime("2011-02-03 04:05"), Fields({0, -1, 7, 7, 7, 7, 7, 7}));
    EXPECT_EQ(readTime("-:2011 12 3x 4 5 6.9 8"), Fields({1, -1, 111, 11, 3, 4, 5, 6}));
    EXPECT_EQ(readTime("1900-02-31 23:59:61"), Fields({1, -1, 0, 1, 31, 23, 59, 61}));
    EXPECT_EQ(readTime("1899-01-01 00:00:00"), Fields({0, -1, -1, 0, 1, 7, 7, 7}));
    for (const char* text :
         {"2011-0-1 0:0:0", "2011-13-1 0:0:0", "2011-1-0 0:0:0", "2011-1-32 0:0:0",
          "2011-1-1 24:0:0", "2011-1-1 0:60:0", "2011-1-1 0:0:62"}) {
        EXPECT_EQ(readTime(text)[0], 0) << text;
    }
}

TEST(StringUtil, CountsSecondsInTheLocalZone) {
    constexpr int kHour = 3600;
    setenv("TZ", "WST5EST,M3.2.0,M11.1.0", 1);
    EXPECT_EQ(Str2Seconds("1970-01-02 00:00:00"), 29 * kHour);
    EXPECT_EQ(Str2Seconds("1970-01-02 00:00"), 0);
    EXPECT_EQ(Str2SecondsSimple("1970-07-01 01:00:00"), 181 * 24 * kHour);  // summer
    EXPECT_EQ(Str2SecondsSimple("1969-12-31 19:00:00"), 0);
    EXPECT_EQ(Str2SecondsSimple("1969-12-31 19:00:01"), 1 - 5 * kHour);
    unsetenv("TZ");
}

TEST(StringUtil, ListsNamesWithOneOfItsLetters) {
    const TemporaryFile place;
    const std::string directory = place.path() + std::string(".d");
    Strings files, expected;
    std::filesystem::create_directory(directory);
    for (const char* name : {"ad", "hut", "map.txt", "p", "DUMP", "note.txt"}) {
        expected.push_back(directory + "/" + name);
        std::ofstream(expected.back()) << "";
    }
    expected.resize(4);
    EXPECT_EQ(GetAllFileByDir(directory, files), 4);
    std::sort(files.begin(), files.end());
    EXPECT_EQ(files, expected);
    EXPECT_EQ(GetAllFileByDir(expected[0], files), 1);
    EXPECT_EQ(files, Strings{expected[0]});
    std::filesystem::remove_all(directory);
    const Printed printed = printedBy([&] { GetAllFileByDir(directory, files); });
    EXPECT_EQ(printed.out, "open File " + directory + "failed!\n");
    EXPECT_EQ(files, Strings{directory});
}

TEST(JudgeDeathTest, EndsTheProcessOnACondition) {
    EXPECT_EQ(Judge(0, "silent"), 0);
    EXPECT_EXIT((dup2(STDERR_FILENO, STDOUT_FILENO), Judge(-1, "bad %s")),
                testing::ExitedWithCode(255), "^bad %s\n$");
}

}  // namespace
