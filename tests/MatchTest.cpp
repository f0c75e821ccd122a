// Compares matches with a model, in which a text is a list of characters and the keys are in a map.

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "DATInterface.h"
#include "Dictionary.h"
#include "LabelImage.h"
#include "MatchModel.h"

namespace {

std::string textOf(DictionaryText text) {
    return std::string(text.bytes == nullptr ? "" : text.bytes, text.size);
}

DictionaryText viewOf(const std::string& text) {
    return {text.data(), text.size()};
}

DictionaryFindOptions optionsOf(int mode, int unit = DICTIONARY_UNIT_BYTE) {
    DictionaryFindOptions options = {};
    options.size = sizeof options;
    options.mode = mode;
    options.unit = unit;
    return options;
}

bool add(void* found, const DictionaryMatch* match) {
    static_cast<Found*>(found)->emplace_back(match->start, match->length, textOf(match->data),
                                             match->image);
    return true;
}

// The same in columns.
Found inColumns(const Handle& handle, const DictionaryFindOptions& options, DictionaryText text) {
    Found found;
    DictionaryColumns columns = {};
    EXPECT_EQ(dictionaryFindColumns(handle.get(), &options, &text, 1, &columns, nullptr),
              DICTIONARY_OK);
    for (std::size_t i = 0; i < columns.count; ++i) {
        const DictionaryText data =
            dictionaryDataAt(handle.get(), columns.image[i], columns.dataNumber[i]);
        found.emplace_back(columns.start[i], columns.end[i] - columns.start[i], textOf(data),
                           columns.image[i]);
    }
    dictionaryFreeColumns(&columns);
    return found;
}

// The matches of a text, found in three ways: as a list, one by one and in columns.
Found found(const Handle& handle, const DictionaryFindOptions& options, const std::string& text) {
    DictionaryMatches matches = {};
    DictionaryError error;
    EXPECT_EQ(dictionaryFindMatches(handle.get(), &options, viewOf(text), &matches, &error),
              DICTIONARY_OK)
        << error.text;
    Found all, visited;
    for (std::size_t i = 0; i < matches.count; ++i) add(&all, &matches.items[i]);
    dictionaryFreeMatches(&matches);
    EXPECT_EQ(dictionaryVisitMatches(handle.get(), &options, viewOf(text), add, &visited, nullptr),
              DICTIONARY_OK);
    EXPECT_EQ(all, visited);
    EXPECT_EQ(all, inColumns(handle, options, viewOf(text)));
    return all;
}

bool contains(const Handle& handle, const DictionaryFindOptions& options, const std::string& text) {
    bool answer = false;
    EXPECT_EQ(dictionaryContainsKey(handle.get(), &options, viewOf(text), &answer, nullptr),
              DICTIONARY_OK);
    return answer;
}

std::string replaced(const Handle& handle, const DictionaryFindOptions& options,
                     const std::string& text) {
    DictionaryReplacement result = {};
    EXPECT_EQ(
        dictionaryReplaceKeys(handle.get(), &options, nullptr, viewOf(text), &result, nullptr),
        DICTIONARY_OK);
    const std::string answer(result.bytes == nullptr ? "" : result.bytes, result.size);
    dictionaryFreeReplacement(&result);
    return answer;
}

// The text with each segment replaced by the first field of its data. Segments are measured in
// bytes.
std::string replacedSlowly(const Found& segments, const std::string& text) {
    std::string result;
    std::size_t done = 0;
    for (const auto& [start, length, data, image] : segments) {
        result += text.substr(done, start - done) + data.substr(0, data.find('\t'));
        done = start + length;
    }
    return result + text.substr(done);
}

// One image or a set of several, and the same as maps.
class World {
public:
    explicit World(const std::vector<Source>& sources) : m_model(sources) {
        for (const Source& source : sources) {
            m_images.push_back(imageOf(source.words, source.isFolded));
        }
        if (sources.size() > 1) m_set = setOf(m_images);
    }
    World(const World&) = delete;
    ~World() { dictionaryFreeSegmenter(m_segmenter); }

    const Handle& handle() const { return m_set == nullptr ? m_images.front() : m_set; }

    void weigh(int weights, double unknownCost) {
        const DictionarySegmenterOptions options = {sizeof options, weights, 1, unknownCost};
        DictionaryError error;
        m_segmenter = dictionaryMakeSegmenter(handle().get(), &options, &error);
        EXPECT_NE(m_segmenter, nullptr) << error.text;
        weights == DICTIONARY_WEIGHTS_COUNTS ? m_model.weighCounts()
                                             : m_model.weighCosts(unknownCost);
    }

    // Expects that, with any options, what is found and replaced equals what the model finds.
    void expectModel(const Text& text, int unit) const {
        const std::string bytes = text.bytes(0, text.size());
        const ModelKeys keys = m_model.keysIn(text, kLongest);
        for (const DictionaryFindOptions& options : everyOptions(unit)) {
            ASSERT_EQ(found(handle(), options, bytes), m_model.find(text, keys, options)) << bytes;
            if (!isSegmentation(options.mode)) continue;
            DictionaryFindOptions inBytes = options;
            inBytes.unit = DICTIONARY_UNIT_BYTE;
            ASSERT_EQ(replaced(handle(), options, bytes),
                      replacedSlowly(m_model.find(text, keys, inBytes), bytes));
        }
        for (const bool wholeWords : {false, true}) {
            DictionaryFindOptions any = optionsOf(DICTIONARY_FIND_ALL);
            any.wholeWords = wholeWords;
            ASSERT_EQ(contains(handle(), any, bytes), !m_model.find(text, keys, any).empty());
        }
    }

    static constexpr std::size_t kLongest = 4;  // longest key, in characters

private:
    static bool isSegmentation(int mode) {
        return mode == DICTIONARY_FIND_SEGMENT || mode == DICTIONARY_FIND_WEIGHTED;
    }

    std::vector<DictionaryFindOptions> everyOptions(int unit) const {
        std::vector<DictionaryFindOptions> all;
        for (int mode = DICTIONARY_FIND_ALL; mode <= DICTIONARY_FIND_PREFIXES; ++mode) {
            DictionaryFindOptions options = optionsOf(mode, unit);
            if (mode == DICTIONARY_FIND_WEIGHTED) options.segmenter = m_segmenter;
            for (const bool everyImage : {false, true}) {
                options.everyImage = everyImage;
                if (everyImage && isSegmentation(mode)) continue;
                for (const bool wholeWords : {false, true}) {
                    options.wholeWords = wholeWords;
                    all.push_back(options);
                }
            }
        }
        return all;
    }

    MatchModel m_model;
    std::vector<Handle> m_images;
    Handle m_set{nullptr, dictionaryClose};
    DictionarySegmenter* m_segmenter = nullptr;
};

const Characters kLetters = {"a",          "A",          "b",          "\u00e9",    "\u00c9",
                             "\uff21",     "\u212a",     "\u023a",     "\u0345",    "\u0301",
                             "\u4e2d",     "\uffff",     "-",          "k",         "\u03b9",
                             "\U0001F600", "\U00010061", "\U00010400", "\U00010428"};
const Characters kOutsiders = {"\x80", "\xF5", std::string(1, '\0'), "z"};
const Characters kSurrogates = {"\xED", "\xA0", "\xBD", "\xED", "\xB8", "\x80"};

class Dice {
public:
    std::size_t below(std::size_t limit) { return m_bits() % limit; }

    std::string letter() {
        // Some are more frequent, so that keys are found.
        return kLetters[below(below(2) == 0 ? 4 : kLetters.size())];
    }

    std::vector<Source> sources() {
        std::vector<Source> sources(1 + below(3));
        for (Source& source : sources) {
            source.isFolded = below(2) == 0;
            for (auto words = 1 + below(40); words > 0; --words) {
                std::string key;
                for (auto size = 1 + below(World::kLongest); size > 0; --size) key += letter();
                source.words[key] = std::to_string(1 + below(9));
            }
        }
        return sources;
    }

    Text text(std::size_t size) {
        Characters text;
        while (text.size() < size) {
            text.push_back(below(10) == 0 ? kOutsiders[below(kOutsiders.size())] : letter());
        }
        if (below(10) == 0) text.insert(text.end(), kSurrogates.begin(), kSurrogates.end());
        return Text(text);
    }

private:
    std::mt19937 m_bits{11};
};

TEST(Match, EqualsTheModelInEveryModeAndUnit) {
    Dice dice;
    for (int round = 0; round < 200 && !testing::Test::HasFailure(); ++round) {
        World world(dice.sources());
        const bool hasCosts = round % 2 == 0;
        world.weigh(hasCosts ? DICTIONARY_WEIGHTS_COSTS : DICTIONARY_WEIGHTS_COUNTS,
                    hasCosts ? 7 : 0);
        for (int i = 0; i < 20 && !testing::Test::HasFailure(); ++i) {
            world.expectModel(dice.text(dice.below(40)), i % 3);
        }
    }
}

// Such texts are searched block by block and segmented window by window.
TEST(Match, EqualsTheModelInLongTexts) {
    Dice dice;
    for (int round = 0; round < 4 && !testing::Test::HasFailure(); ++round) {
        std::vector<Source> sources = dice.sources();
        // Words end at different places in plain and in folded text.
        for (const bool isFolded : {false, true}) sources.push_back({{{"a", "1"}}, isFolded});
        World world(sources);
        world.weigh(DICTIONARY_WEIGHTS_COSTS, 7);
        world.expectModel(dice.text(30'000), DICTIONARY_UNIT_BYTE);
    }
}

TEST(Match, ClassicModeFindsWhatSearchFinds) {
    Dice dice;
    for (int round = 0; round < 100; ++round) {
        const World world(dice.sources());
        for (int i = 0; i < 20; ++i) {
            const Text text = dice.text(dice.below(40));
            const std::string bytes = text.bytes(0, text.size());
            std::string listed;
            for (const auto& [start, length, data, image] :
                 found(world.handle(), optionsOf(DICTIONARY_FIND_CLASSIC), bytes)) {
                listed +=
                    bytes.substr(start, length) + '/' + std::to_string(start) + ':' + data + '\t';
            }
            char* const result = search(bytes.c_str(), world.handle().get(), true);
            EXPECT_EQ(listed, result);
            freeResult(result);
        }
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
    // What comes after it is not even read.
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
