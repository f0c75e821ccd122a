// Lookups as records, against a model that knows a text as characters and the keys as a map.

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "DATInterface.h"
#include "Dictionary.h"
#include "LabelImage.h"

namespace {

struct Character {
    std::string bytes;
    std::size_t utf16 = 1;
};

using Text = std::vector<Character>;
using Found = std::vector<std::tuple<std::size_t, std::size_t, std::string>>;

std::string bytesOf(const Text& text, std::size_t from, std::size_t to) {
    std::string bytes;
    for (std::size_t i = from; i < to; ++i) bytes += text[i].bytes;
    return bytes;
}

std::size_t sizeOf(const Text& text, std::size_t from, std::size_t to, int unit) {
    if (unit == DICTIONARY_UNIT_BYTE) return bytesOf(text, from, to).size();
    std::size_t size = 0;
    for (std::size_t i = from; i < to; ++i) {
        size += unit == DICTIONARY_UNIT_UTF16 ? text[i].utf16 : 1;
    }
    return size;
}

Found expected(const Words& words, const Text& text, int mode, int unit) {
    Found all;
    for (std::size_t from = 0, next = 1; from < text.size(); from = next, next = from + 1) {
        if (mode == DICTIONARY_FIND_PREFIXES && from > 0) break;
        const bool isEvery = mode == DICTIONARY_FIND_ALL || mode == DICTIONARY_FIND_PREFIXES;
        bool isFirst = true;
        for (std::size_t to = from + 1; to <= text.size(); ++to) {
            const auto word = words.find(bytesOf(text, from, to));
            if (word == words.end()) continue;
            if (!isEvery && !isFirst) all.pop_back();
            isFirst = false;
            if (mode == DICTIONARY_FIND_SEGMENT) next = to;
            all.emplace_back(sizeOf(text, 0, from, unit), sizeOf(text, from, to, unit),
                             word->second + '\t');
        }
    }
    return all;
}

std::string textOf(DictionaryText text) {
    return std::string(text.bytes == nullptr ? "" : text.bytes, text.size);
}

DictionaryFindOptions optionsOf(int mode, int unit = DICTIONARY_UNIT_BYTE) {
    DictionaryFindOptions options = {};
    options.size = sizeof options;
    options.mode = mode;
    options.unit = unit;
    return options;
}

// Matches of a text, found once as a list and once one by one.
Found found(const Handle& image, const std::string& text, int mode, int unit) {
    const DictionaryFindOptions options = optionsOf(mode, unit);
    const DictionaryText searched = {text.data(), text.size()};
    DictionaryMatches matches = {};
    EXPECT_EQ(dictionaryFindMatches(image.get(), &options, searched, &matches, nullptr),
              DICTIONARY_OK);
    Found all, visited;
    const auto add = [](void* found, const DictionaryMatch* match) {
        static_cast<Found*>(found)->emplace_back(match->start, match->length, textOf(match->data));
        return true;
    };
    for (std::size_t i = 0; i < matches.count; ++i) {
        add(&all, &matches.items[i]);
        const DictionaryMatch& match = matches.items[i];
        EXPECT_EQ(dictionaryDataAt(image.get(), match.image, match.dataNumber).bytes,
                  match.data.bytes);
    }
    dictionaryFreeMatches(&matches);
    EXPECT_EQ(dictionaryVisitMatches(image.get(), &options, searched, add, &visited, nullptr),
              DICTIONARY_OK);
    EXPECT_EQ(all, visited);
    return all;
}

bool isKey(const Handle& image, const std::string& key, const std::string& expectedData) {
    DictionaryText data = {"before", 6};
    const bool is = dictionaryLookupKey(image.get(), {key.data(), key.size()}, &data);
    EXPECT_EQ(data.bytes != nullptr, is);
    EXPECT_EQ(textOf(data), is ? expectedData + '\t' : "");
    return is;
}

bool contains(const Handle& image, const std::string& text) {
    bool answer = false;
    EXPECT_EQ(
        dictionaryContainsKey(image.get(), nullptr, {text.data(), text.size()}, &answer, nullptr),
        DICTIONARY_OK);
    return answer;
}

TEST(Match, EqualsTheModelInEveryModeAndUnit) {
    const Words words = {{"a", "1"},
                         {"ab", "22"},
                         {"aba", "333"},
                         {"b\u00e9", ""},
                         {"\u00e9", "5"},
                         {"\u4e2d", "6"},
                         {"\uffff", "7"},
                         {"bb\uffff", "8"},
                         {"\U0001F600", "9"},
                         {"\U0001F600a", "10"},
                         {"b\U0001F600\U00010061", "11"}};
    const Handle image = imageOf(words);
    const Text letters = {{"a"},    {"b"},    {"\u00e9"}, {"\u4e2d"},        {"\uffff"},
                          {"\x80"}, {"\xF5"}, {{'\0'}},   {"\U0001F600", 2}, {"\U00010061", 2}};
    const Text surrogates = {{"\xED"}, {"\xA0"}, {"\xBD"}, {"\xED"}, {"\xB8"}, {"\x80"}};
    std::mt19937 random(11);
    for (int round = 0; round < 3000 && !testing::Test::HasFailure(); ++round) {
        Text text;
        for (auto i = random() % 40; i > 0; --i) text.push_back(letters[random() % letters.size()]);
        if (round % 10 == 0) text.insert(text.end(), surrogates.begin(), surrogates.end());
        const std::string bytes = bytesOf(text, 0, text.size());
        for (const int mode : {DICTIONARY_FIND_ALL, DICTIONARY_FIND_LONGEST,
                               DICTIONARY_FIND_SEGMENT, DICTIONARY_FIND_PREFIXES}) {
            for (int unit = DICTIONARY_UNIT_BYTE; unit <= DICTIONARY_UNIT_UTF16; ++unit) {
                EXPECT_EQ(found(image, bytes, mode, unit), expected(words, text, mode, unit));
            }
        }
        const auto word = words.find(bytes);
        const bool isWord = word != words.end();
        EXPECT_EQ(isKey(image, bytes, isWord ? word->second : ""), isWord);
        EXPECT_EQ(contains(image, bytes), !expected(words, text, DICTIONARY_FIND_ALL, 0).empty());

        std::string listed;
        for (const auto& [start, length, feature] :
             found(image, bytes, DICTIONARY_FIND_CLASSIC, DICTIONARY_UNIT_BYTE)) {
            listed +=
                bytes.substr(start, length) + '/' + std::to_string(start) + ':' + feature + '\t';
        }
        char* const result = search(bytes.c_str(), image.get(), true);
        EXPECT_EQ(listed, result);
        freeResult(result);
    }
    for (const auto& [key, data] : words) {
        EXPECT_TRUE(isKey(image, key, data)) << key;
    }
}

TEST(Match, SeveralTextsShareAList) {
    const Handle image = imageOf({{"a", "1"}, {"ab", "2"}});
    DictionaryText texts[] = {{"xab", 3}, {nullptr, 0}, {"none", 4}, {"a", 1}};
    std::vector<std::size_t> ends(4);
    DictionaryMatches matches = {};
    DictionaryError error;
    const auto find = [&](const DictionaryFindOptions* options) {
        return dictionaryFindInTexts(image.get(), options, texts, 4, &matches, ends.data(), &error);
    };
    for (int again = 0; again < 2; ++again) {
        EXPECT_EQ(find(nullptr), DICTIONARY_OK);
        EXPECT_EQ(ends, (std::vector<std::size_t>{2, 2, 2, 3}));
        EXPECT_EQ(matches.count, 3u);
    }
    const auto expectRefused = [&](const DictionaryFindOptions* options, int code) {
        EXPECT_EQ(find(options), code) << error.text;
        EXPECT_EQ(ends, std::vector<std::size_t>(4));
        EXPECT_EQ(matches.count, 0u);
        EXPECT_NE(std::string(error.text), "");
    };
    DictionaryFindOptions options = optionsOf(0);
    const std::pair<int*, int> wrong[] = {
        {&options.mode, -1}, {&options.mode, 6}, {&options.unit, -1}, {&options.unit, 3}};
    for (const auto& [member, value] : wrong) {
        options = optionsOf(0);
        *member = value;
        expectRefused(&options, DICTIONARY_BAD_ARGUMENT);
    }
    options = optionsOf(0);
    --options.size;
    expectRefused(&options, DICTIONARY_BAD_ARGUMENT);
    texts[1].size = std::size_t{1} << 31;
    expectRefused(nullptr, DICTIONARY_BAD_ARGUMENT);
    EXPECT_EQ(error.line, 2u);
    texts[1].bytes = "";
    expectRefused(nullptr, DICTIONARY_TEXT_TOO_LONG);
    EXPECT_EQ(error.line, 2u);
    EXPECT_EQ(dictionaryFindMatches(nullptr, nullptr, texts[0], &matches, &error),
              DICTIONARY_BAD_ARGUMENT);
    EXPECT_EQ(dictionaryFindMatches(image.get(), nullptr, texts[0], nullptr, nullptr),
              DICTIONARY_BAD_ARGUMENT);
    EXPECT_FALSE(dictionaryLookupKey(nullptr, texts[0], nullptr));
    EXPECT_FALSE(dictionaryLookupKey(image.get(), texts[0], nullptr));
    dictionaryFreeMatches(&matches);
    EXPECT_EQ(matches.items, nullptr);
    dictionaryFreeMatches(nullptr);
}

TEST(Match, AVisitorStopsWhereItWantsTo) {
    const Handle image = imageOf({{"a", "1"}, {"ab", "2"}});
    // What is behind it is not even read.
    const std::string text = "ab";
    const DictionaryText longer = {text.data(), std::size_t{1} << 30};
    DictionaryError error;
    for (const int mode : {DICTIONARY_FIND_ALL, DICTIONARY_FIND_LONGEST, DICTIONARY_FIND_SEGMENT}) {
        const DictionaryFindOptions options = optionsOf(mode);
        const auto stop = [](void*, const DictionaryMatch*) { return false; };
        const auto fail = [](void*, const DictionaryMatch*) -> bool { throw 1; };
        EXPECT_EQ(dictionaryVisitMatches(image.get(), &options, longer, stop, nullptr, &error),
                  DICTIONARY_STOPPED);
        EXPECT_EQ(dictionaryVisitMatches(image.get(), &options, longer, fail, nullptr, &error),
                  DICTIONARY_STOPPED);
        EXPECT_EQ(error.code, DICTIONARY_STOPPED);
    }
    bool answer = false;
    EXPECT_EQ(dictionaryContainsKey(image.get(), nullptr, longer, &answer, &error), DICTIONARY_OK);
    EXPECT_TRUE(answer);
    EXPECT_EQ(dictionaryVisitMatches(image.get(), nullptr, longer, nullptr, nullptr, &error),
              DICTIONARY_BAD_ARGUMENT);
}

TEST(Match, DataFallsIntoFieldsAndRecords) {
    const std::tuple<std::string, std::vector<std::string>> rows[] = {
        {"", {}},
        {"\t", {"+"}},
        {";a\tb\t", {"+;a", "b"}},
        {"a\t;b\tc\t;\t", {"+a", "+b", "c", "+"}},
        {"a\tb", {"+a", "b"}},
    };
    for (const auto& [data, fields] : rows) {
        DictionaryText rest = {data.data(), data.size()};
        DictionaryField field = {};
        std::vector<std::string> read;
        while (dictionaryNextField(&rest, &field)) {
            read.push_back((field.beginsRecord ? "+" : "") + textOf(field.text));
        }
        EXPECT_EQ(read, fields);
    }
}

TEST(Match, ImagesShowWhatTheyHold) {
    const Handle image = imageOf({{"a", "1"}, {"ab", "22"}});
    DictionaryDescription description = {};
    description.size = sizeof description;
    ASSERT_EQ(dictionaryDescribe(image.get(), &description, nullptr), DICTIONARY_OK);
    const DictionaryText bytes = dictionaryImageBytes(image.get(), 0);
    EXPECT_EQ(description.keys, 2u);
    EXPECT_EQ(description.images, 1u);
    EXPECT_EQ(description.featureBytes, 13u);
    EXPECT_EQ(description.imageBytes, bytes.size);
    EXPECT_EQ(12 * description.cells + description.featureBytes, bytes.size);
    EXPECT_EQ(dictionaryCellAt(image.get(), 0, 'a').check, -1);
    EXPECT_EQ(dictionaryCellAt(image.get(), 0, description.cells).base, -1);
    EXPECT_EQ(dictionaryCellAt(image.get(), 1, 0).base, -1);
    EXPECT_EQ(dictionaryImageBytes(image.get(), 1).bytes, nullptr);
    int numbers = 0;
    for (std::uint32_t number = 0; number < 20; ++number) {
        numbers += dictionaryDataAt(image.get(), 0, number).bytes != nullptr;
    }
    EXPECT_EQ(numbers, 2);
    EXPECT_EQ(textOf(dictionaryDataAt(image.get(), 0, 6)), "22\t");
}

}  // namespace
