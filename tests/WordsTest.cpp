// Where words begin and end, and how letters are folded: the rules by examples. tests/words shows
// that they hold for all of Unicode and for real texts.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Dictionary.hpp"
#include "EncodedText.h"
#include "Folding.h"
#include "InsideWords.h"
#include "Utf8Encoder.h"
#include "WordBoundary.h"

namespace {

using namespace Dictionary;

// The text with "|" at each place that is not inside a word.
std::string cut(const std::string& text) {
    const EncodedText encoded(text.data(), text.size(), EncodedText::kPassOver);
    const Words<EncodedText> words(encoded);
    std::string result;
    for (std::size_t place = 0; place < encoded.size(); ++place) {
        if (encoded.isInsidePair(place)) continue;
        const SPOS character = encoded.span(place, place + 1, 0);
        if (place > 0 && !words.isInside(place)) result += '|';
        result.append(text, static_cast<std::size_t>(character.start),
                      static_cast<std::size_t>(character.end - character.start + 1));
    }
    return result;
}

TEST(Words, AreCutByTheirScripts) {
    const std::string examples[] = {
        "don|'|t| |1st|_|of", "Straße|-|Ende", "мир|,|ёлка", "한국어| |말",
        // Scripts without blanks.
        "東|京|タ|ワ|ー|abc|東|12|年", "ไ|ท|ย|a", "a|①|Ⅷ|²",
        // Marks go with what is before them, joiners with both sides.
        "e\u0301a|.|\u0301|a", "葛|\U000E0100|a", "か|\u3099|a", "a\U000E0100a", "هند\u200Cها",
        "Ge\u00ADbirge",
        // Above U+FFFF, and bytes that are no character.
        "\U00010428\U00010400|\U0001F600|a", "a|\xFF|a\U00010428\u0301"};
    for (const std::string& example : examples) {
        std::string text = example;
        text.erase(std::remove(text.begin(), text.end(), '|'), text.end());
        EXPECT_EQ(cut(text), example);
    }
}

// Whether the places found all at once are those found one by one.
bool areFoundAlike(const std::string& text) {
    const EncodedText encoded(text.data(), text.size(), EncodedText::kPassOver);
    const Words<EncodedText> words(encoded);
    InsideWords inside;
    inside.find(encoded, {});
    const std::uint8_t* const closed = inside.closedPlaces();
    for (std::size_t place = 0; place <= encoded.size(); ++place) {
        const bool isClosed = closed != nullptr && closed[place] != 0;
        if (!encoded.isInsidePair(place) && isClosed != words.isInside(place)) return false;
    }
    return true;
}

TEST(Words, AreFoundAllAtOnceAsOneByOne) {
    std::string runs, betweenLetters;
    for (std::int32_t code = 0; code < kBmpEnd; ++code) {
        if (isHighSurrogate(code) || isLowSurrogate(code)) continue;
        appendUtf8(code, runs);
        betweenLetters += 'a';
        appendUtf8(code, betweenLetters);
    }
    const std::string pair = "\U00010428\u0301";
    for (const std::string& text : {runs, betweenLetters, runs + pair, std::string("か\u3099")}) {
        EXPECT_TRUE(areFoundAlike(text));
    }
    for (std::size_t size = 0; size < 100; ++size) {
        EXPECT_TRUE(areFoundAlike(std::string(size, 'a'))) << size;
    }
}

TEST(Folding, TakesCaseAndWidth) {
    const struct {
        std::string text, folded;
    } cases[] = {{"Straße STRASSE", "straße strasse"},
                 {"ẞ ſ K Σας Ǆ ǅ", "ß s k σασ ǆ ǆ"},
                 {"ＡＢｃ１２～　ｶ", "abc12~ ｶ"},
                 {"\U00010400Ꭰꭰ\U0001E900", "\U00010428ᎠᎠ\U0001E922"},
                 {"\xFFÀ\xE4\xB8İ東", "\xFFà\xE4\xB8İ東"},
                 {"", ""}};
    for (const auto& example : cases) {
        std::string result = "before";
        foldUtf8(example.text, result);
        EXPECT_EQ(result, example.folded);
    }
}

TEST(Columns, AreTheMatchesOfManyTexts) {
    const std::vector<std::string> texts = {"Ab abc",
                                            "",
                                            "cab",
                                            "\xFF\x61"
                                            "bab c",
                                            std::string(300'000, 'b'),
                                            "ab"};
    dictionary::BuildOptions folding;
    folding.folded = true;
    dictionary::ImageBuffer small, large;
    dictionary::buildBytes("ab\t1\nb\t2\n", small);
    dictionary::buildBytes("AB\t3\nabc\t4\n", large, folding);
    const auto plain = dictionary::Image::openBytes(small.view());
    const auto folded = dictionary::Image::openBytes(large.view());
    const auto both = dictionary::Image::set({&plain, &folded});
    dictionary::FindOptions pieces = dictionary::FindMode::segment;
    pieces.unknownPieces = true;
    for (const dictionary::FindOptions& options :
         {dictionary::FindOptions(dictionary::FindMode::all),
          dictionary::FindOptions(dictionary::FindMode::segment), pieces}) {
        const auto columns = both.findColumns(texts, options);
        std::size_t at = 0;
        for (std::size_t text = 0; text < texts.size(); ++text) {
            for (const dictionary::Match& match : both.find(texts[text], options)) {
                ASSERT_LT(at, columns.size());
                EXPECT_EQ(columns.text()[at], text);
                EXPECT_EQ(columns.start()[at], match.start);
                EXPECT_EQ(columns.end()[at], match.start + match.length);
                EXPECT_EQ(both.dataAt(columns.dataNumber()[at], columns.image()[at]), match.data);
                ++at;
            }
        }
        EXPECT_EQ(at, columns.size());
        EXPECT_GT(at, 4u);
    }
}

}  // namespace
