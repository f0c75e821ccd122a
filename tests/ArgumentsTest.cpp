// How the functions for C refuse arguments that are null or do not go together.

#include <gtest/gtest.h>

#include <cmath>

#include "Dictionary.h"
#include "LabelImage.h"

namespace {

constexpr DictionaryText kText = {"ab", 2};

template <class Options>
Options sized() {
    Options options = {};
    options.size = sizeof options;
    return options;
}

// Items that have one field, which is null, or for which the list of fields is null.
bool nextNullField(void*, const DictionaryText** fields, size_t* count) {
    static constexpr DictionaryText kNull = {nullptr, 1};
    *fields = &kNull;
    *count = 1;
    return true;
}
bool nextWithoutFields(void*, const DictionaryText** fields, size_t* count) {
    *fields = nullptr;
    *count = 1;
    return true;
}

TEST(Arguments, AreRefusedByName) {
    const Handle handle = imageOf({{"a", "1"}});
    const DictionaryHandle* const image = handle.get();
    DictionaryMatches matches = {};
    DictionaryColumns columns = {};
    DictionaryReplacement result = {};
    std::size_t ends[1];
    DictionaryError error;
    const auto expectRefused = [&](int code, const char* text) {
        EXPECT_EQ(code, DICTIONARY_BAD_ARGUMENT) << text;
        EXPECT_STREQ(error.text, text);
    };
    expectRefused(dictionaryFindInTexts(image, nullptr, nullptr, 1, &matches, ends, &error),
                  "the texts are null");
    expectRefused(dictionaryFindInTexts(image, nullptr, &kText, 1, &matches, nullptr, &error),
                  "the ends are null");
    expectRefused(dictionaryFindInTexts(image, nullptr, &kText, 1, nullptr, ends, &error),
                  "the matches are null");
    expectRefused(dictionaryFindColumns(image, nullptr, nullptr, 1, &columns, &error),
                  "the texts are null");
    expectRefused(dictionaryFindColumns(image, nullptr, &kText, 1, nullptr, &error),
                  "the columns are null");
    expectRefused(dictionaryContainsKey(image, nullptr, kText, nullptr, &error),
                  "the place for the answer is null");
    expectRefused(dictionaryReplaceKeys(image, nullptr, nullptr, kText, nullptr, &error),
                  "the result is null");
    auto replace = sized<DictionaryReplaceOptions>();
    replace.alternatives = "";
    expectRefused(dictionaryReplaceKeys(image, nullptr, &replace, kText, &result, &error),
                  "the separator of alternatives is empty");

    const std::pair<bool DictionaryFindOptions::*, std::pair<int, const char*>> flags[] = {
        {&DictionaryFindOptions::unknownPieces,
         {DICTIONARY_FIND_ALL, "unknownPieces is only for the modes SEGMENT and WEIGHTED"}},
        {&DictionaryFindOptions::joinedRuns,
         {DICTIONARY_FIND_ALL, "joinedRuns is only for the modes SEGMENT and WEIGHTED"}},
        {&DictionaryFindOptions::everyImage,
         {DICTIONARY_FIND_SEGMENT, "everyImage is only for the modes ALL, LONGEST and PREFIXES"}},
        {&DictionaryFindOptions::wholeWords,
         {DICTIONARY_FIND_CLASSIC, "wholeWords is not for the mode CLASSIC"}},
    };
    for (const auto& [flag, row] : flags) {
        auto find = sized<DictionaryFindOptions>();
        find.mode = row.first;
        find.*flag = true;
        expectRefused(dictionaryFindMatches(image, &find, kText, &matches, &error), row.second);
    }
    auto find = sized<DictionaryFindOptions>();
    find.mode = DICTIONARY_FIND_WEIGHTED;
    expectRefused(dictionaryFindMatches(image, &find, kText, &matches, &error),
                  "the mode WEIGHTED needs a segmenter, and no other mode takes one");

    auto segmenter = sized<DictionarySegmenterOptions>();
    EXPECT_EQ(dictionaryMakeSegmenter(nullptr, &segmenter, &error), nullptr);
    expectRefused(error.code, "the handle is null");
    segmenter.unknownCost = std::nan("");
    EXPECT_EQ(dictionaryMakeSegmenter(image, &segmenter, &error), nullptr);
    expectRefused(error.code, "the cost of unknown characters is not a number");
    segmenter.weights = 7;
    EXPECT_EQ(dictionaryMakeSegmenter(image, &segmenter, &error), nullptr);
    expectRefused(error.code, "the weights are not one of DictionaryWeights");

    auto source = sized<DictionarySource>();
    source.nextItem = nextWithoutFields;
    expectRefused(dictionaryBuildFrom(&source, nullptr, nullptr, nullptr, &error),
                  "the fields of an item are null");
    source.nextItem = nextNullField;
    expectRefused(dictionaryBuildFrom(&source, nullptr, nullptr, nullptr, &error),
                  "a field of an item is null");
}

TEST(Arguments, ThatAreNullFindAndFreeNothing) {
    DictionaryText text = {"x", 1};
    DictionaryField field = {};
    EXPECT_EQ(dictionaryImageBytes(nullptr, 0).size, 0u);
    EXPECT_EQ(dictionaryDataAt(nullptr, 0, 0).bytes, nullptr);
    EXPECT_EQ(dictionaryCellAt(nullptr, 0, 0).base, -1);
    EXPECT_FALSE(dictionaryNextField(nullptr, &field) || dictionaryNextField(&text, nullptr));
    EXPECT_FALSE(dictionaryLookupKey(nullptr, {"a", 1}, &text));
    EXPECT_EQ(text.bytes, nullptr);
    EXPECT_EQ(dictionaryLookupKeys(nullptr, &kText, 1, nullptr), 0u);
    EXPECT_FALSE(dictionaryIsWordCharacter({nullptr, 0}));
    EXPECT_FALSE(dictionaryIsWordCharacter({"\xFF", 1}));
    dictionaryFreeColumns(nullptr);
    dictionaryFreeReplacement(nullptr);
    dictionaryFreeBuffer(nullptr);
}

}  // namespace
