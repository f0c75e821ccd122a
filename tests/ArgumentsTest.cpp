// What the functions for C say to arguments that are null or do not go together.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>

#include "Dictionary.h"
#include "LabelImage.h"

namespace {

constexpr DictionaryText kText = {"ab", 2};

// Nothing but `change` differs from what is right.
template <class Options, class Change>
Options optionsWith(const Change& change) {
    Options options = {};
    options.size = sizeof options;
    change(options);
    return options;
}

int build(bool (*nextItem)(void*, const DictionaryText**, size_t*), DictionaryError* error) {
    DictionarySource source = {};
    source.size = sizeof source;
    source.nextItem = nextItem;
    return dictionaryBuildFrom(&source, nullptr, nullptr, nullptr, error);
}

TEST(Arguments, AreRefusedByName) {
    const Handle image = imageOf({{"a", "1"}});
    const Handle other = imageOf({{"a", "1"}});
    const auto segmenterOf = [&](const DictionaryHandle* handle, auto change,
                                 DictionaryError* error) {
        const auto options = optionsWith<DictionarySegmenterOptions>(change);
        const std::unique_ptr<DictionarySegmenter, decltype(&dictionaryFreeSegmenter)> segmenter(
            dictionaryMakeSegmenter(handle, &options, error), dictionaryFreeSegmenter);
        return segmenter == nullptr ? error->code : int{DICTIONARY_OK};
    };
    const auto find = [&](auto change) {
        return [&, change](DictionaryError* error) {
            const auto options = optionsWith<DictionaryFindOptions>(change);
            DictionaryMatches matches = {};
            return dictionaryFindMatches(image.get(), &options, kText, &matches, error);
        };
    };
    using Find = DictionaryFindOptions;
    DictionaryMatches matches = {};
    DictionaryColumns columns = {};
    DictionaryReplacement result = {};
    std::size_t ends[1];
    const struct {
        const char* text;
        std::function<int(DictionaryError*)> call;
    } rows[] = {
        {"the texts are null",
         [&](auto* error) {
             return dictionaryFindInTexts(image.get(), nullptr, nullptr, 1, &matches, ends, error);
         }},
        {"the ends are null",
         [&](auto* error) {
             return dictionaryFindInTexts(image.get(), nullptr, &kText, 1, &matches, nullptr,
                                          error);
         }},
        {"the matches are null",
         [&](auto* error) {
             return dictionaryFindInTexts(image.get(), nullptr, &kText, 1, nullptr, ends, error);
         }},
        {"the texts are null",
         [&](auto* error) {
             return dictionaryFindColumns(image.get(), nullptr, nullptr, 1, &columns, error);
         }},
        {"the columns are null",
         [&](auto* error) {
             return dictionaryFindColumns(image.get(), nullptr, &kText, 1, nullptr, error);
         }},
        {"the place for the answer is null",
         [&](auto* error) {
             return dictionaryContainsKey(image.get(), nullptr, kText, nullptr, error);
         }},
        {"the result is null",
         [&](auto* error) {
             return dictionaryReplaceKeys(image.get(), nullptr, nullptr, kText, nullptr, error);
         }},
        {"what separates alternatives is empty",
         [&](auto* error) {
             const auto options = optionsWith<DictionaryReplaceOptions>(
                 [](auto& replace) { replace.alternatives = ""; });
             return dictionaryReplaceKeys(image.get(), nullptr, &options, kText, &result, error);
         }},
        {"a segmenter goes with the mode WEIGHTED, and with no other",
         find([](Find& options) { options.mode = DICTIONARY_FIND_WEIGHTED; })},
        {"unknownPieces goes with the modes SEGMENT and WEIGHTED alone",
         find([](Find& options) { options.unknownPieces = true; })},
        {"joinedRuns goes with the modes SEGMENT and WEIGHTED alone",
         find([](Find& options) { options.joinedRuns = true; })},
        {"everyImage goes with the modes ALL, LONGEST and PREFIXES alone", find([](Find& options) {
             options.mode = DICTIONARY_FIND_SEGMENT;
             options.everyImage = true;
         })},
        {"wholeWords does not go with the mode CLASSIC", find([](Find& options) {
             options.mode = DICTIONARY_FIND_CLASSIC;
             options.wholeWords = true;
         })},
        {"the handle is null",
         [&](auto* error) {
             return segmenterOf(
                 nullptr, [](auto&) {}, error);
         }},
        {"the weights are none of DictionaryWeights",
         [&](auto* error) {
             return segmenterOf(
                 image.get(), [](auto& options) { options.weights = 7; }, error);
         }},
        {"the cost of unknown characters is no number",
         [&](auto* error) {
             return segmenterOf(
                 image.get(), [](auto& options) { options.unknownCost = std::nan(""); }, error);
         }},
        {"the bytes are null",
         [&](auto* error) {
             return dictionaryOpenBytes({nullptr, 5}, DICTIONARY_OPEN_COPY, error) == nullptr
                        ? error->code
                        : int{DICTIONARY_OK};
         }},
        {"a set has from 1 to 64 images",
         [&](auto* error) {
             const DictionaryHandle* const none[] = {nullptr};
             return dictionaryOpenSet(none, 0, error) == nullptr ? error->code : int{DICTIONARY_OK};
         }},
        {"the fields of an item are null",
         [](auto* error) {
             return build(
                 [](void*, const DictionaryText** fields, size_t* count) {
                     *fields = nullptr;
                     *count = 1;
                     return true;
                 },
                 error);
         }},
        {"a field of an item is null",
         [](auto* error) {
             return build(
                 [](void*, const DictionaryText** fields, size_t* count) {
                     static constexpr DictionaryText kNull[] = {{nullptr, 1}};
                     *fields = kNull;
                     *count = 1;
                     return true;
                 },
                 error);
         }},
    };
    for (const auto& row : rows) {
        DictionaryError error;
        EXPECT_EQ(row.call(&error), DICTIONARY_BAD_ARGUMENT) << row.text;
        EXPECT_STREQ(error.text, row.text);
    }
}

TEST(Arguments, ThatAreNullFindAndFreeNothing) {
    const Handle image = imageOf({{"a", "1"}});
    DictionaryText text = {"x", 1};
    DictionaryField field = {};
    EXPECT_EQ(dictionaryImageBytes(nullptr, 0).size, 0u);
    EXPECT_EQ(dictionaryImageBytes(image.get(), 1).size, 0u);
    EXPECT_EQ(dictionaryDataAt(nullptr, 0, 0).bytes, nullptr);
    EXPECT_EQ(dictionaryCellAt(nullptr, 0, 0).base, -1);
    EXPECT_FALSE(dictionaryNextField(nullptr, &field) || dictionaryNextField(&text, nullptr));
    EXPECT_FALSE(dictionaryLookupKey(nullptr, {"a", 1}, &text));
    EXPECT_EQ(text.bytes, nullptr);
    EXPECT_TRUE(dictionaryLookupKey(image.get(), {"a", 1}, nullptr));
    EXPECT_EQ(dictionaryLookupKeys(nullptr, &kText, 1, nullptr), 0u);
    EXPECT_EQ(dictionaryLookupKeys(image.get(), nullptr, 1, &text), 0u);
    EXPECT_FALSE(dictionaryIsWordCharacter({nullptr, 0}));
    EXPECT_FALSE(dictionaryIsWordCharacter({"\xFF", 1}));
    dictionaryFreeMatches(nullptr);
    dictionaryFreeColumns(nullptr);
    dictionaryFreeReplacement(nullptr);
    dictionaryFreeBuffer(nullptr);
}

}  // namespace
