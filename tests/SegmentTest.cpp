// Compares segmentation by weight, and replacement, with slow ways to do both.

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "Dictionary.h"
#include "SegmentModel.h"

namespace {

using Pieces = std::vector<DictionaryMatch>;

DictionaryText textOf(const std::string& text) {
    return {text.data(), text.size()};
}

// An open dictionary with what tests ask of it.
class Subject {
public:
    explicit Subject(const Words& words) : m_handle(imageOf(words)) {}
    Subject(const Subject&) = delete;
    ~Subject() {
        dictionaryFreeSegmenter(m_segmenter);
        dictionaryFreeMatches(&m_matches);
        dictionaryFreeReplacement(&m_replacement);
    }

    // Makes the segmenter. Returns the error.
    DictionaryError weigh(int weights, unsigned field, double unknownCost = 0) {
        const DictionarySegmenterOptions options = {sizeof options, weights, field, unknownCost};
        DictionaryError error;
        m_segmenter = dictionaryMakeSegmenter(m_handle.get(), &options, &error);
        EXPECT_EQ(m_segmenter == nullptr, error.code != DICTIONARY_OK);
        return error;
    }

    DictionaryFindOptions options(int unit, bool joinedRuns = false) const {
        DictionaryFindOptions options = {};
        options.size = sizeof options;
        options.mode = m_segmenter == nullptr ? DICTIONARY_FIND_SEGMENT : DICTIONARY_FIND_WEIGHTED;
        options.segmenter = m_segmenter;
        options.unit = unit;
        options.unknownPieces = true;
        options.joinedRuns = joinedRuns;
        return options;
    }

    const DictionaryMatches& find(const std::string& text, int unit, bool joinedRuns = false) {
        DictionaryFindOptions chosen = options(unit, joinedRuns);
        chosen.wholeWords = wholeWords;
        DictionaryError error;
        dictionaryFindMatches(m_handle.get(), &chosen, textOf(text), &m_matches, &error);
        EXPECT_EQ(error.code, DICTIONARY_OK) << error.text;
        return m_matches;
    }

    Pieces piecesIn(const std::string& text, int unit) {
        const DictionaryMatches& found = find(text, unit);
        return Pieces(found.items, found.items + found.count);
    }

    // The pieces, with keys in brackets.
    std::string pieces(const std::string& text, bool joinedRuns = false) {
        const DictionaryMatches& found = find(text, DICTIONARY_UNIT_BYTE, joinedRuns);
        std::string pieces;
        for (std::size_t i = 0; i < found.count; ++i) {
            const DictionaryMatch& piece = found.items[i];
            const std::string bytes = text.substr(piece.start, piece.length);
            pieces += piece.data.bytes == nullptr ? bytes + '/' : '[' + bytes + ']';
        }
        return pieces;
    }

    const DictionaryReplacement& replace(const std::string& text, int unit,
                                         DictionaryReplaceOptions how) {
        const DictionaryFindOptions chosen = options(unit);
        how.size = sizeof how;
        how.wantEdits = true;
        DictionaryError error;
        dictionaryReplaceKeys(m_handle.get(), &chosen, &how, textOf(text), &m_replacement, &error);
        EXPECT_EQ(error.code, DICTIONARY_OK) << error.text;
        return m_replacement;
    }

    const DictionaryHandle* handle() const { return m_handle.get(); }

    bool wholeWords = false;

private:
    const Handle m_handle;
    DictionarySegmenter* m_segmenter = nullptr;
    DictionaryMatches m_matches = {};
    DictionaryReplacement m_replacement = {};
};

// The cheapest way to cut the rest of a text. Costs are whole numbers, so that sums are exact.
struct Cut {
    double cost = std::numeric_limits<double>::infinity();
    std::string pieces;
};

// The cheapest of all ways to cut the text from character `from` on. Ways with longer first words
// are tried first, and win among equals.
Cut cheapestOfAll(const Words& costs, const Characters& text, std::size_t from) {
    if (from == text.size()) return {0, ""};
    Cut best;
    for (std::size_t to = text.size(); to > from; --to) {
        const std::string key = joined(text, from, to);
        const auto found = costs.find(key);
        const bool isUnknown = to == from + 1 && best.pieces.empty();
        if (found == costs.end() && !isUnknown) continue;
        const Cut rest = cheapestOfAll(costs, text, to);
        const double cost =
            rest.cost + (found == costs.end() ? kUnknownCost : std::stod(found->second));
        if (cost >= best.cost) continue;
        best = {cost, (found == costs.end() ? key + '/' : '[' + key + ']') + rest.pieces};
    }
    return best;
}

const Characters kBesides = {"\xFF", "\xE4\xB8", "\xF0\x9F\x98", std::string(1, '\0'), "z"};

class Random {
public:
    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(m_bits);
    }
    const std::string& of(const Characters& characters) {
        return characters[below(characters.size())];
    }
    std::string key(std::size_t most) {
        std::string key;
        for (std::size_t left = 1 + below(most); left > 0; --left) key += of(kAlphabet);
        return key;
    }
    Words words(std::size_t count, const std::function<std::string()>& data) {
        Words words;
        while (words.size() < count) words[key(3)] = data();
        return words;
    }
    Characters text(std::size_t size) {
        Characters text;
        while (text.size() < size) {
            const std::string& outside = of(kBesides);
            // A sequence that is cut off is as many characters as it has bytes.
            for (const char byte : below(8) == 0 ? outside : "") text.emplace_back(1, byte);
            text.push_back(of(kAlphabet));
        }
        return text;
    }

private:
    std::mt19937_64 m_bits{11};
};

TEST(Segment, FindsTheCheapestOfAllCuts) {
    Random random;
    for (int round = 0; round < 60; ++round) {
        const Words costs =
            random.words(12, [&] { return std::to_string(static_cast<int>(random.below(9)) - 1); });
        Subject subject(costs);
        ASSERT_EQ(subject.weigh(DICTIONARY_WEIGHTS_COSTS, 1, kUnknownCost).code, DICTIONARY_OK);
        for (int i = 0; i < 60; ++i) {
            const Characters text = random.text(random.below(9));
            ASSERT_EQ(subject.pieces(joined(text, 0, text.size())),
                      cheapestOfAll(costs, text, 0).pieces);
        }
    }
}

TEST(Segment, CutsLongTextsAsOne) {
    Random random;
    const Words costs = random.words(40, [&] { return std::to_string(random.below(9)); });
    Subject subject(costs);
    subject.weigh(DICTIONARY_WEIGHTS_COSTS, 1, kUnknownCost);
    const Characters text = random.text(60'000);
    EXPECT_EQ(subject.pieces(joined(text, 0, text.size())), cheapestPieces(costs, text, 3));
    // In a text of continuation bytes alone no character begins, so it may be cut between any two.
    const std::string rubbish(100'000, '\x80');
    EXPECT_EQ(subject.find(rubbish, DICTIONARY_UNIT_BYTE).count, rubbish.size());
}

// Long texts are cut in two this many bytes before their end. If that cut a character, what follows
// would be weighed wrongly.
TEST(Segment, CutsNoCharacterOfALongText) {
    constexpr std::size_t kWindowBytes = 1 << 15;
    Subject subject({{"😀", "0"}, {"😀a", "3"}, {"ab", "0"}, {"x", "1"}});
    subject.weigh(DICTIONARY_WEIGHTS_COSTS, 1, kUnknownCost);
    for (std::size_t before = 2; before < 8; ++before) {
        const std::string text = "x😀ab" + std::string(kWindowBytes - before, 'x');
        EXPECT_EQ(subject.pieces(text).substr(0, 16), "[x][😀][ab][x]") << before;
    }
}

// Words go on from one piece of the text to the next. Some have more marks than fit into a piece.
TEST(Segment, CutsLongTextsAtWholeWordsAsOne) {
    const Characters letters = {"a", "é", "\u0301", "中", "-"};
    Random random;
    const Words costs = {{"a", "1"},  {"\u0301", "1"}, {"中", "2"}, {"中中", "3"},
                         {"aé", "3"}, {"é", "4"},      {"-a", "2"}};
    Subject subject(costs);
    subject.wholeWords = true;
    subject.weigh(DICTIONARY_WEIGHTS_COSTS, 1, kUnknownCost);
    for (const std::size_t marks : {0u, 9u, 30'000u, 70'000u}) {
        Characters text;
        std::vector<bool> closed;
        bool followsWord = false;
        const auto add = [&](const std::string& letter) {
            const bool isMark = letter == "\u0301", isLetter = letter == "a" || letter == "é";
            closed.push_back(followsWord && (isLetter || isMark));
            followsWord = isLetter || (isMark && followsWord);
            text.push_back(letter);
        };
        for (int i = 0; i < 40'000; ++i) {
            const bool isLong = i % 20'000 == 10'000;
            for (std::size_t left = isLong ? marks : 0; left > 0; --left) add("\u0301");
            add(random.of(letters));
        }
        EXPECT_EQ(subject.pieces(joined(text, 0, text.size())),
                  cheapestPieces(costs, text, 2, closed));
    }
}

TEST(Segment, FindsKeysLongerThanAnyPiece) {
    const std::string key = std::string(2'999, 'x') + "中";
    Subject subject({{key, "1"}, {"x", "1"}, {"xx", "1"}});
    subject.weigh(DICTIONARY_WEIGHTS_COSTS, 1, kUnknownCost);
    std::string text;
    for (int i = 0; i < 14; ++i) text += key + "x中";
    const DictionaryMatches& found = subject.find(text, DICTIONARY_UNIT_CODE_POINT);
    ASSERT_EQ(found.count, 42u);
    for (std::size_t i = 0; i < found.count; i += 3) {
        EXPECT_EQ(found.items[i].start, i / 3 * 3'002);
        EXPECT_EQ(found.items[i].length, 3'000u);
    }
}

// By count, "a" and "bc" with 50 and 28 of 100 win against the rare "ab" and "c" with 2 and 20.
TEST(Segment, ReadsCounts) {
    Subject subject({{"ab", "x\t2"}, {"a", "x\t50\na\ty\t1"}, {"bc", "x\t28"}, {"c", "x\t20"}});
    ASSERT_EQ(subject.weigh(DICTIONARY_WEIGHTS_COUNTS, 2).code, DICTIONARY_OK);
    EXPECT_EQ(subject.pieces("abc"), "[a][bc]");
    // The second b is no key; an unknown character counts 1.
    EXPECT_EQ(subject.pieces("abb"), "[ab]b/");
    EXPECT_EQ(subject.pieces(""), "");
}

TEST(Segment, PrefersTheLongerFirstWord) {
    Subject subject({{"a", "1"}, {"ab", "1"}, {"b", "1"}, {"bc", "1"}, {"c", "1"}});
    subject.weigh(DICTIONARY_WEIGHTS_COUNTS, 0);
    EXPECT_EQ(subject.pieces("abc"), "[ab][c]");
}

TEST(Segment, RefusesWhatIsNoWeight) {
    const struct {
        const char* data;
        int weights;
        int code;
        const char* said;
    } kCases[] = {
        {"n", DICTIONARY_WEIGHTS_COUNTS, DICTIONARY_NO_WEIGHT, "\"中😀\" has no field 2"},
        {"n\n中😀\tn\t7", DICTIONARY_WEIGHTS_COUNTS, DICTIONARY_NO_WEIGHT, "has no field 2"},
        {"n\t0.5", DICTIONARY_WEIGHTS_COUNTS, DICTIONARY_BAD_WEIGHT, "\"0.5\" in field 2"},
        {"n\t0", DICTIONARY_WEIGHTS_COUNTS, DICTIONARY_BAD_WEIGHT, "\"0\" in field 2"},
        {"n\t", DICTIONARY_WEIGHTS_COSTS, DICTIONARY_BAD_WEIGHT, "\"\" in field 2"},
        {"n\t 1", DICTIONARY_WEIGHTS_COSTS, DICTIONARY_BAD_WEIGHT, "\" 1\" in field 2"},
        {"n\t1x", DICTIONARY_WEIGHTS_COSTS, DICTIONARY_BAD_WEIGHT, "\"1x\" in field 2"},
        {"n\tnan", DICTIONARY_WEIGHTS_COSTS, DICTIONARY_BAD_WEIGHT, "\"nan\" in field 2"},
        {"n\t1e999", DICTIONARY_WEIGHTS_COSTS, DICTIONARY_BAD_WEIGHT, "\"1e999\" in field 2"},
        // Of a long one, at most 80 bytes are shown, in whole characters.
        {"n\t中中中中中中中中中中中中中中中中中中中中中中中中中中中中", DICTIONARY_WEIGHTS_COSTS,
         DICTIONARY_BAD_WEIGHT, "\"中中中中中中中中中中中中中中中中中中中中中中中中中中\" in"},
        {"n\t-1e3", DICTIONARY_WEIGHTS_COSTS, DICTIONARY_OK, ""},
        {"n\t1.5", DICTIONARY_WEIGHTS_COUNTS, DICTIONARY_OK, ""},
    };
    for (const auto& row : kCases) {
        Subject subject({{"a", "n\t1"}, {"中😀", row.data}});
        const DictionaryError error = subject.weigh(row.weights, 2);
        EXPECT_EQ(error.code, row.code) << row.data;
        EXPECT_NE(std::string(error.text).find(row.said), std::string::npos) << error.text;
    }
}

TEST(Segment, JoinsRunsThatNoKeyCovers) {
    const std::string text =
        "x86-64中éb2b😀\xFF"
        "9";
    Subject longest({{"中", "1"}, {"b", "1"}});
    EXPECT_EQ(longest.pieces(text), "x/8/6/-/6/4/[中]é/[b]2/[b]😀/\xFF/9/");
    EXPECT_EQ(longest.pieces(text, true), "x86/-/64/[中]é/[b]2/[b]😀/\xFF/9/");
    longest.weigh(DICTIONARY_WEIGHTS_COUNTS, 1);
    EXPECT_EQ(longest.pieces(text, true), "x86/-/64/[中]é/[b]2/[b]😀/\xFF/9/");
}

// ---- Replacement ----

TEST(Replace, PutsAFieldInPlaceOfEachKey) {
    const struct {
        DictionaryReplaceOptions options;
        const char* result;
    } kCases[] = {
        {{0, 0, nullptr, false, false}, "<A1 A2>cd\xFF"},
        {{0, 1, " ", false, false}, "<A1>cd\xFF"},
        {{0, 2, nullptr, true, false}, "<B>\xFF"},
        {{0, 3, nullptr, false, false}, "<ab>cD\xFF"},
        {{0, 3, nullptr, true, false}, "<>D\xFF"},
    };
    Subject subject({{"ab", "A1 A2\tB"}, {"c", ""}, {"d", "\t\tD"}});
    for (const auto& row : kCases) {
        const DictionaryReplacement& result =
            subject.replace("<ab>cd\xFF", DICTIONARY_UNIT_BYTE, row.options);
        EXPECT_EQ(std::string(result.bytes, result.size), row.result);
    }
    EXPECT_EQ(subject.replace("", DICTIONARY_UNIT_BYTE, {}).size, 0u);
}

using Edits = std::vector<std::vector<std::size_t>>;

Edits editsOf(const DictionaryReplacement& result) {
    Edits edits;
    for (std::size_t i = 0; i < result.editCount; ++i) {
        const DictionaryEdit& edit = result.edits[i];
        edits.push_back({edit.start, edit.end, edit.resultStart, edit.resultEnd});
    }
    return edits;
}

// The length of legal UTF-8 in a unit.
std::size_t lengthOf(const std::string& text, int unit) {
    std::size_t units = 0;
    for (const char byte : text) {
        const auto bits = static_cast<unsigned char>(byte);
        const bool begins = (bits & 0xC0) != 0x80;
        if (unit == DICTIONARY_UNIT_BYTE || begins) ++units;
        if (unit == DICTIONARY_UNIT_UTF16 && bits >= 0xF0) ++units;
    }
    return units;
}

// Puts the replacement of a text together from its pieces, in bytes and in another unit.
TEST(Replace, SaysWhatBecameOfWhat) {
    Random random;
    const Words words = random.words(20, [&] { return random.key(4) + "\t3"; });
    Subject subject(words);
    for (int round = 0; round < 6; ++round) {
        if (round == 3) subject.weigh(DICTIONARY_WEIGHTS_COUNTS, 2);
        const int unit = round % 3;
        const Characters characters = random.text(500);
        const std::string text = joined(characters, 0, characters.size());
        std::string result;
        Edits edits;
        std::size_t at = 0, resultAt = 0;
        const Pieces bytes = subject.piecesIn(text, DICTIONARY_UNIT_BYTE);
        const Pieces pieces = subject.piecesIn(text, unit);
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            ASSERT_EQ(pieces[i].start, at);
            at += pieces[i].length;
            const std::string piece = text.substr(bytes[i].start, bytes[i].length);
            const bool isKey = pieces[i].data.bytes != nullptr;
            const std::string data = isKey ? words.at(piece) : piece + '\t';
            const std::string becomes = data.substr(0, data.find('\t'));
            const std::size_t length = isKey ? lengthOf(becomes, unit) : pieces[i].length;
            if (isKey) edits.push_back({pieces[i].start, at, resultAt, resultAt + length});
            result += becomes;
            resultAt += length;
        }
        const DictionaryReplacement& replaced = subject.replace(text, unit, {});
        EXPECT_EQ(std::string(replaced.bytes, replaced.size), result);
        EXPECT_EQ(editsOf(replaced), edits);
    }
}

TEST(Replace, TakesSegmentationsAlone) {
    Subject subject(Words{{"a", "1"}});
    DictionaryFindOptions options = subject.options(DICTIONARY_UNIT_BYTE);
    options.mode = DICTIONARY_FIND_LONGEST;
    options.unknownPieces = false;
    DictionaryReplacement result = {};
    EXPECT_EQ(
        dictionaryReplaceKeys(subject.handle(), &options, nullptr, textOf("a"), &result, nullptr),
        DICTIONARY_BAD_ARGUMENT);
    EXPECT_EQ(
        dictionaryReplaceKeys(subject.handle(), nullptr, nullptr, textOf("a"), &result, nullptr),
        DICTIONARY_OK);
    EXPECT_EQ(std::string(result.bytes, result.size), "1");
    dictionaryFreeReplacement(&result);
}

}  // namespace
