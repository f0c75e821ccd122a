// Compares all lookups with a model, which is a map from key to feature text.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "BoundaryText.h"
#include "DATReader.h"
#include "DATWriter.h"
#include "LetterCoder.h"
#include "LookupModel.h"

namespace {

using Dictionary::CDATReader;
using Dictionary::CDATWriter;
using Dictionary::ICoderInterface;
using Dictionary::SPOS;

using Words = LookupModel::Words;

class Lookup {
public:
    Lookup(ICoderInterface& coder, const Words& words, bool reverse) : m_model(words, reverse) {
        testing::internal::CaptureStdout();
        m_image = std::make_unique<LookupImage>(coder, words, reverse);
        testing::internal::GetCapturedStdout();
    }

    void check(const std::string& text) {
        const Answers expected = m_model.answers(text);
        const Answers actual = m_image->answers(text);
        EXPECT_EQ(expected.every, actual.every) << text;
        EXPECT_EQ(expected.segments, actual.segments) << text;
        EXPECT_EQ(expected.groups, actual.groups) << text;
        EXPECT_EQ(expected.exact, actual.exact) << text;
    }

private:
    LookupModel m_model;
    std::unique_ptr<LookupImage> m_image;
};

// Calls `visit` with every string of at most `length` of the letters.
template <class Visit>
void forEachText(const std::vector<std::string>& letters, int length, const Visit& visit,
                 const std::string& text = "") {
    visit(text);
    if (length == 0) return;
    for (const std::string& letter : letters)
        forEachText(letters, length - 1, visit, text + letter);
}

// UTF-8 with so few codes that images stay small.
class FewCodesCoder : public Dictionary::CUTF8Coder {
public:
    int encodeString(const char* text, std::vector<int>& codes, std::vector<SPOS>& positions,
                     int length) override {
        const int result = CUTF8Coder::encodeString(text, codes, positions, length);
        for (int& code : codes) code %= getNumOfSingleWord();
        return result;
    }
    int getNumOfSingleWord() override { return 64; }
};

// UTF-8 without the text's first character.
class LateCoder : public Dictionary::CUTF8Coder {
public:
    int encodeString(const char* text, std::vector<int>& codes, std::vector<SPOS>& positions,
                     int length) override {
        const int result = CUTF8Coder::encodeString(text, codes, positions, length);
        codes.erase(codes.begin());
        positions.erase(positions.begin());
        return result;
    }
};

// The length of the longest texts that are searched; DICTIONARY_SCOPE sets another one for long
// runs.
int scope() {
    const char* const given = std::getenv("DICTIONARY_SCOPE");
    return given == nullptr ? 7 : std::atoi(given);
}

// Searches all texts of the scope in all dictionaries of up to three keys over two letters.
void checkAllSmallDictionaries(ICoderInterface& coder, const std::vector<std::string>& letters) {
    std::vector<std::string> keys;
    std::vector<std::string> texts;
    forEachText(letters, 3, [&](const std::string& key) { keys.push_back(key); });
    forEachText(letters, scope(), [&](const std::string& text) { texts.push_back(text); });
    keys.erase(keys.begin());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        for (std::size_t j = i; j < keys.size(); ++j) {
            for (std::size_t k = j; k < keys.size(); ++k) {
                const Words words = {{keys[i], "1"}, {keys[j], "22"}, {keys[k], "333"}};
                for (const bool reverse : {false, true}) {
                    Lookup lookup(coder, words, reverse);
                    for (const std::string& text : texts) lookup.check(text);
                    ASSERT_FALSE(testing::Test::HasFailure())
                        << keys[i] << ' ' << keys[j] << ' ' << keys[k];
                }
            }
        }
    }
}

TEST(Lookup, EqualsTheModelOnAllSmallDictionaries) {
    LetterCoder letters;
    checkAllSmallDictionaries(letters, {"A", "B"});
    FewCodesCoder characters;
    checkAllSmallDictionaries(characters, {"a", "中"});
}

TEST(Lookup, EqualsTheModelOnRandomUtf8) {
    const std::vector<std::string> letters = {"a", "b", "\u00e9", "\u4e2d", "\u6587"};
    std::mt19937 random(3);
    const auto text = [&](unsigned most) {
        std::string result;
        for (auto i = random() % (most + 1); i > 0; --i) result += letters[random() % 5];
        return result;
    };
    Dictionary::CUTF8Coder coder;
    for (int round = 0; round < 40 && !HasFailure(); ++round) {
        Words words;
        for (int i = 0; i < 60; ++i) words[text(5) + letters[random() % 5]] = std::to_string(i);
        Lookup lookup(coder, words, round % 2 == 1);
        for (int i = 0; i < 200; ++i) lookup.check(text(40));
        for (const auto& entry : words) lookup.check(entry.first);
    }
}

std::vector<std::pair<int, int>> spans(const std::vector<SPOS>& records) {
    std::vector<std::pair<int, int>> result;
    for (const SPOS& record : records) result.emplace_back(record.start, record.end);
    return result;
}

using Spans = std::vector<std::pair<int, int>>;

struct Kept {
    const char* name;
    const char* text;
    int length;
    bool firstOnly;
    Spans every;
    Spans longest;
};

// Rules that the model does not know: limits, illegal bytes, characters outside the alphabet.
TEST(Lookup, KeepsItsRulesOnTheEdges) {
    Dictionary::CUTF8Coder coder;
    CDATWriter writer(&coder, false);
    for (const char* key : {"a", "ab", "abc", "b", "中"}) writer.addKeys(key, key);
    testing::internal::CaptureStdout();
    writer.buildDAT();
    testing::internal::GetCapturedStdout();
    const std::unique_ptr<char[]> image(writer.write());
    // Copies in a vector, which work like the original.
    std::vector<CDATReader> readers(2, CDATReader(&coder, image.get(), false));
    readers[0] = CDATReader(&coder, nullptr, false);
    readers[0] = readers[1];
    CDATReader& reader = readers[0];
    const Kept rows[] = {
        {"length", "abc", 2, false, {{0, 0}, {0, 1}, {1, 1}}, {{0, 2}}},
        {"length inside a character", "中", 2, true, {}, {{0, 2}}},
        {"first only", "abc", -1, true, {{0, 0}, {0, 1}, {0, 2}}, {{0, 2}}},
        {"first only skips", "\U0001F600ab", -1, true, {{4, 4}, {4, 5}}, {{4, 5}}},
        {"first only stops", "xab", -1, true, {}, {{1, 2}}},
        {"key before an outsider", "ab\U0001F600", -1, false, {{0, 0}}, {{0, 1}}},
        {"illegal byte", "ab\x80 abc", -1, false, {{0, 0}, {0, 1}, {1, 1}}, {{0, 1}}},
        {"empty", "", -1, false, {}, {}},
    };
    for (const Kept& row : rows) {
        std::vector<SPOS> every;
        std::vector<SPOS> longest;
        reader.allMatch(row.text, every, row.firstOnly, row.length);
        reader.maxMatch(row.text, longest);
        EXPECT_EQ(row.every, spans(every)) << row.name;
        EXPECT_EQ(row.longest, spans(longest)) << row.name;
        std::vector<std::vector<std::pair<int, std::string>>> groups;
        reader.allMatch(row.text, groups, row.firstOnly, row.length);
        const std::size_t size = std::strlen(row.text);
        const std::size_t limit = row.length > 0 ? 2 : size;
        EXPECT_EQ(row.firstOnly ? 1 : limit, groups.size()) << row.name;
    }
    std::string feature = "before";
    reader.exactMatch("ab\x80", feature);
    EXPECT_EQ("", feature);
    LateCoder late;
    CDATReader(&late, image.get(), false).exactMatch("xab", feature);
    EXPECT_EQ("", feature);
    std::vector<SPOS> untouched;
    reader.exactMatch(nullptr, feature);
    reader.allMatch(nullptr, untouched, false, -1);
    reader.maxMatch(nullptr, untouched);
    for (const bool hasCoder : {false, true}) {
        CDATReader half(hasCoder ? &coder : nullptr, hasCoder ? nullptr : image.get(), false);
        half.exactMatch("ab", feature);
        half.allMatch("ab", untouched, false, -1);
        half.maxMatch("ab", untouched);
    }
    EXPECT_TRUE(untouched.empty() && feature.empty());
    std::vector<int> codes = {'a', 'b'};
    for (int to = 0; to < 4; ++to) {  // never reads after the codes
        reader.printVec(codes, 0, to);
        reader.printVec(codes, to, 0);
    }
}

// Images of few cells, at the end of readable memory: no text leads out of them.
TEST(Lookup, StaysInsideSmallImages) {
    Dictionary::CUTF8Coder coder;
    LetterCoder letters;
    for (const int keys : {0, 1}) {
        for (const bool nullCoder : {false, true}) {
            CDATWriter writer(nullCoder ? nullptr : static_cast<ICoderInterface*>(&letters), false);
            testing::internal::CaptureStdout();
            if (keys > 0) writer.addKeys("AB", "");
            EXPECT_FALSE(writer.addKeys(nullptr, ""));
            writer.buildDAT();
            testing::internal::GetCapturedStdout();
            const std::unique_ptr<char[]> image(writer.write());
            const int size = writer.imageSize();
            EXPECT_EQ(keys == 0 || nullCoder, size == 12);
            const GuardedBytes guarded(std::string(image.get(), static_cast<std::size_t>(size)));
            CDATReader reader(&coder, guarded.data(), false);
            for (const char* text : {"a", "\x01\x02", "\uffff\uffff", "\U0010ffff", "A\uffff"}) {
                std::vector<SPOS> found;
                std::string feature;
                reader.allMatch(text, found, false, -1);
                reader.maxMatch(text, found);
                reader.exactMatch(text, feature);
                EXPECT_TRUE(size > 12 || (found.empty() && feature.empty())) << text;
            }
        }
    }
}

}  // namespace
