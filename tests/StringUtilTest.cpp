#include "StringUtil.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "BoundaryText.h"

namespace {

using namespace Dictionary;
using Strings = std::vector<std::string>;

TEST(StringUtil, ReadsSeparatorNotation) {
    for (const char* text : {"", "\\", "\\12", "\\u006", "\\t", "\t", "\\0a9", "\\-65"}) {
        EXPECT_EQ(getEscapeSeparator(text), text);
    }
    EXPECT_EQ(getEscapeSeparator("\\0124\\u0065"), "\0144A");
    EXPECT_EQ(getEscapeSeparator("\\300\\u9999\\\\009\\u\\010"), ",\017\\\t\\u\n");
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
    expectPieces({}, SplitStr("", ',', p), p);
    expectPieces({"a"}, SplitStr("x[a]y[]z[b", '[', ']', p), p);
    expectPieces({"a[b", "d"}, SplitStr("]x[a[b]c][d]]", '[', ']', p), p);
    expectPieces({"a", "c"}, SplitStr("|a|b|c|d", '|', '|', p), p);
    expectPieces({"2011", "02", "03", "04"}, SplitStr("2011-02-03 04::", " -:", p), p);
}

TEST(StringUtil, ConvertsCopies) {
    EXPECT_EQ(trim(" \t ") + trim("") + trim("\r\n a\tb\v \t"), "a\tb\v");
    EXPECT_EQ(String2Upper("az`{AZ\260a\340"), "AZ`{AZ\260A\340");
    EXPECT_EQ(String2Lower("AZ@[az\260A\300"), "az@[az\260a\300");
    EXPECT_EQ(Str2Int(" \n-7.5"), -7);
    EXPECT_EQ(Str2Int("4294967297abc") + Str2Int("abc"), 1);
    EXPECT_EQ(Str2Long("99999999999999999999"), LONG_MAX);
    EXPECT_EQ(Int2Str(INT_MIN) + Long2Str(LONG_MAX), "-21474836489223372036854775807");
    EXPECT_EQ(IsDigitString("0123456789"), 0);
    for (const char* text : {"", "-7", "1 ", "1.5", "\262"}) EXPECT_EQ(IsDigitString(text), -1);
}

TEST(StringUtil, ChangesInPlace) {
    std::string text = "abba";
    EXPECT_EQ(ReplaceChar(text, 'a', 'a') + ReplaceChar(text, 'a', 'x'), 4);
    EXPECT_EQ(ReplaceAll(text, "b", "bb") + ReplaceAll(text, "bbbbx", ""), 0);
    EXPECT_EQ(text, "x");
    text = "\1a\2\t\177\260\1\377\200\260";
    EXPECT_EQ(SimpleEscape(text), 10);
    EXPECT_EQ(text, " a \t\177\260 \377\200 ");
    text = "\260\241";
    EXPECT_EQ(SimpleEscape(text), 2);
    EXPECT_EQ(text, "\260\241");
    const std::size_t kept[] = {0, 1, 1, 3, 3, 5, 5, 5};
    for (std::size_t length = 0; length < 8; ++length) {
        text = "a\260\241\260b\260";
        EXPECT_EQ(GBKSubStr(text, length), kept[length]);
        EXPECT_EQ(text, std::string("a\260\241\260b", kept[length]));
    }
}

// The rules one by one, by recursion.
bool matchSlowly(const char* pattern, const char* text) {
    const char* const afterRun = pattern + std::strspn(pattern, "*?");
    if (*text == '\0') return *afterRun == '\0';
    if (*pattern == '*') {
        bool found = *afterRun == '\0';
        for (; *text != '\0' && !found; ++text) found = matchSlowly(afterRun, text);
        return found;
    }
    if (*pattern == '?' && matchSlowly(pattern + 1, text)) return true;
    return (*pattern == '?' || *pattern == *text) && matchSlowly(pattern + 1, text + 1);
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
    for (const std::string& text : wordsOver("ab")) {
        const char* const placed = placeAtPageEnd(text + '\0');
        for (const std::string& pattern : patterns) {
            ASSERT_EQ(wildcard(pattern.c_str(), placed), matchSlowly(pattern.c_str(), placed))
                << pattern << " on " << text;
        }
    }
    std::string manyAsterisks;
    for (int i = 0; i < 40; ++i) manyAsterisks += "*?a";
    const std::string text(100000, 'a');
    EXPECT_EQ(wildcard((manyAsterisks + "b").c_str(), text.c_str()), 0);
}

TEST(StringUtil, CountsSelectedItems) {
    const struct {
        const char* statement;
        int result;
        const char* messages = "|";  // standard output, then standard error
    } cases[] = {{"", -1},
                 {"update truncate delete ", 0, "It is del sql\n|"},
                 {"update truncate t", 0, "Warning it is truncate sql \n|"},
                 {"select update from t", 0, "It is update sql\n|"},
                 {"SELECT a FROM t", -1, "|sql err,because no find string \"from\"\n"},
                 {"a,b from t", -1, "|sql err,because no find string \"select\"\n"},
                 {"from select a, b", 1},
                 {"x,select a, b, c from t, u from ", 3},
                 {"select f(g(a, b), c), ',(', ),d from t", 5}};
    for (const auto& c : cases) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int result = GetItemNumFromSQL(c.statement);
        const std::string out = testing::internal::GetCapturedStdout();
        EXPECT_EQ(out + "|" + testing::internal::GetCapturedStderr(), c.messages);
        EXPECT_EQ(result, c.result) << c.statement;
    }
}

// The result, then daylight saving, date and time of day, each 7 where it is left alone.
using Fields = std::vector<int>;

Fields readTime(const char* text) {
    std::tm t{};
    t.tm_isdst = t.tm_year = t.tm_mon = t.tm_mday = t.tm_hour = t.tm_min = t.tm_sec = 7;
    const bool result = Str2TimeStruct(text, &t);
    return {result, t.tm_isdst, t.tm_year, t.tm_mon, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec};
}

TEST(StringUtil, ReadsTimes) {
    EXPECT_EQ(readTime(""), Fields({0, 7, 7, 7, 7, 7, 7, 7}));
    EXPECT_EQ(readTime("2011-02-03 04:05"), Fields({0, -1, 7, 7, 7, 7, 7, 7}));
    EXPECT_EQ(readTime("-:2011 12 3x 4 5 6.9 8"), Fields({1, -1, 111, 11, 3, 4, 5, 6}));
    EXPECT_EQ(readTime("1900-02-31 23:59:61"), Fields({1, -1, 0, 1, 31, 23, 59, 61}));
    EXPECT_EQ(readTime("1899-01-01 00:00:00"), Fields({0, -1, -1, 0, 1, 7, 7, 7}));
    EXPECT_EQ(readTime("2011-01-01 24:00:00"), Fields({0, -1, 111, 0, 1, 24, 0, 0}));
    for (const char* text : {"2011-00-01 0:0:0", "2011-13-01 0:0:0", "2011-01-00 0:0:0",
                             "2011-01-32 0:0:0", "2011-01-01 0:60:0", "2011-01-01 0:0:62"}) {
        EXPECT_EQ(readTime(text)[0], 0) << text;
    }
}

TEST(StringUtil, CountsSecondsInTheLocalZone) {
    constexpr int kHour = 3600;
    setenv("TZ", "WST5EST,M3.2.0,M11.1.0", 1);
    EXPECT_EQ(Str2Seconds("1970-01-01"), 0);
    EXPECT_EQ(Str2Seconds("1970-01-02 00:00:00"), 29 * kHour);
    EXPECT_EQ(Str2SecondsSimple("1970-01-02 00:00:00"), 24 * kHour);
    EXPECT_EQ(Str2SecondsSimple("1970-07-01 01:00:00"), 181 * 24 * kHour);  // summer
    EXPECT_EQ(Str2SecondsSimple("1969-12-31 19:00:00"), 0);
    EXPECT_EQ(Str2SecondsSimple("1969-12-31 19:00:01"), 1 - 5 * kHour);
    unsetenv("TZ");
}

TEST(StringUtil, ListsNamesWithOneOfItsLetters) {
    std::string directory = testing::TempDir() + "XXXXXX";
    ASSERT_NE(mkdtemp(&directory[0]), nullptr);
    Strings expected;
    for (const char* name : {"ad", "hut", "map.txt", "p", "DUMP", "note.txt"}) {
        expected.push_back(directory + "/" + name);
        std::ofstream(expected.back()) << "";
    }
    expected.resize(4);
    Strings files = {"old"};
    const int count = GetAllFileByDir(directory, files);
    std::sort(files.begin(), files.end());
    expectPieces(expected, count, files);
    expectPieces({expected[0]}, GetAllFileByDir(expected[0], files), files);
    std::filesystem::remove_all(directory);
    testing::internal::CaptureStdout();
    expectPieces({directory}, GetAllFileByDir(directory, files), files);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "open File " + directory + "failed!\n");
}

TEST(JudgeDeathTest, EndsTheProcessOnACondition) {
    EXPECT_EQ(Judge(0, "silent"), 0);
    EXPECT_EXIT((dup2(STDERR_FILENO, STDOUT_FILENO), Judge(-1, "bad %s")),
                testing::ExitedWithCode(255), "^bad %s\n$");
}

}  // namespace
