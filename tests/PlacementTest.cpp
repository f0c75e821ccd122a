// Compares the fast build with the literal one: the cells are identical, whatever the keys.

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <random>
#include <tuple>

#include "CellArray.h"
#include "CellDemand.h"
#include "DATWriter.h"
#include "EachKernel.h"
#include "FirstFit.h"
#include "ImageFormat.h"
#include "LetterCoder.h"
#include "LiteralTrie.h"
#include "TrieBuilder.h"

namespace {

using Dictionary::CDATWriter;

class Quiet {
public:
    Quiet() { testing::internal::CaptureStdout(); }
    ~Quiet() { testing::internal::GetCapturedStdout(); }
};

// Letters from 'P' on have codes of more than sixteen bits.
class WideCoder : public LetterCoder {
public:
    static int wide(int code) { return code < 16 ? code : code + 69000; }

    int encodeString(const char* text, std::vector<int>& codes,
                     std::vector<Dictionary::SPOS>& positions, int length) override {
        LetterCoder::encodeString(text, codes, positions, length);
        std::transform(codes.begin(), codes.end(), codes.begin(), wide);
        return 1;
    }
    int getNumOfSingleWord() override { return 70000; }
};

struct KeySet {
    unsigned seed;
    int keys;
    int letters;  // of the alphabet
    int maxLength;
    bool sorted;
    bool reverse;
    bool wide;
};

std::vector<std::string> randomKeys(const KeySet& set, std::mt19937& random) {
    std::vector<std::string> keys;
    for (int i = 0; i < set.keys; ++i) {
        std::string key(random() % static_cast<unsigned>(set.maxLength + 1), ' ');
        for (char& letter : key) {
            letter = static_cast<char>('@' + random() % static_cast<unsigned>(set.letters));
        }
        keys.push_back(key);
    }
    if (set.sorted) std::sort(keys.begin(), keys.end());
    return keys;
}

// Compares the raw cells, in which free cells differ from used ones.
void expectSameCells(CDATWriter& writer, LiteralTrie& literal, const KeySet& set) {
    const int count = literal.cellCount();
    std::vector<std::array<int, 3>> cells(static_cast<std::size_t>(count) + 1, {9, 9, 9});
    writer.write(cells.data(), true);
    for (int i = 0; i < count; ++i) {
        const LiteralTrie::Cell& cell = literal.cell(i);
        const int check = cell.check == -2 ? 9 : cell.check;
        ASSERT_EQ(cells[static_cast<std::size_t>(i)],
                  (std::array<int, 3>{cell.base, check, cell.feature}))
            << "cell " << i << " of " << count << ", seed " << set.seed;
    }
}

// The operations that take one node continue where a whole build ended.
void expectSameBases(CDATWriter& writer, LiteralTrie& literal) {
    writer.reallocBC(2 * literal.cellCount());
    for (int start = 0; start < literal.cellCount(); start += 1 + literal.cellCount() / 3) {
        int position = start;
        writer.nextFreePos(position);
        EXPECT_EQ(position, literal.firstFreeFrom(start));
    }
    const LiteralTrie::Unit* const widest = literal.widest();
    if (widest == nullptr || widest->passingKeys.empty()) return;
    LiteralTrie::Unit unit = *widest;
    EXPECT_EQ(writer.getConsistentBasePos(&unit), literal.findBase(unit));
}

void buildBothWays(const KeySet& set) {
    std::mt19937 random(set.seed);
    LetterCoder narrowCoder;
    WideCoder wideCoder;
    Dictionary::ICoderInterface& coder = set.wide ? wideCoder : narrowCoder;
    CDATWriter writer(&coder, set.reverse);
    LiteralTrie literal(coder.getNumOfSingleWord());
    const auto add = [&](const std::string& key) {
        std::string feature = std::to_string(random() % 5);
        // Feature strings are ordered as a whole, but written up to their first NUL.
        if (random() % 2 == 0) feature += '\0' + std::to_string(random() % 999);
        std::vector<int> codes;
        for (const char letter : key) {
            codes.push_back(set.wide ? WideCoder::wide(letter - '@') : letter - '@');
        }
        if (set.reverse) std::reverse(codes.begin(), codes.end());
        literal.add(codes, feature);
        ASSERT_TRUE(writer.addKeys(key.c_str(), feature));
        if (random() % 4 != 0) return;
        const std::string another = std::to_string(random() % 7);
        const int number = static_cast<int>(random() % 60) - 1;
        literal.put(another, number);
        writer.putFeature(another, number);
    };
    const auto build = [&] {
        literal.build();
        testing::internal::CaptureStdout();
        const bool built = writer.buildDAT();
        const std::string lines = testing::internal::GetCapturedStdout();
        EXPECT_EQ(built ? literal.reports() + 1 : 0, std::count(lines.begin(), lines.end(), '\r'));
    };
    for (const std::string& key : randomKeys(set, random)) add(key);
    build();
    // A second build starts with fresh cells. Cells are compared only after it, as a dump makes the
    // array one cell longer.
    if (set.seed % 3 == 0) {
        for (const std::string& key : randomKeys(set, random)) add(key);
        build();
    }
    expectSameCells(writer, literal, set);
    expectSameBases(writer, literal);
}

TEST(Placement, EqualsTheLiteralRules) {
    std::mt19937 random(20261121);
    for (unsigned seed = 0; seed < 3000 && !testing::Test::HasFatalFailure(); ++seed) {
        const int letters = 1 + static_cast<int>(random() % 64);
        const int keys = static_cast<int>(random() % (seed % 50 == 0 ? 1500 : 60));
        const int maxLength = 1 + static_cast<int>(random() % 7);
        buildBothWays({seed, keys, letters, maxLength, random() % 2 == 0, random() % 2 == 0,
                       seed % 100 == 1});
    }
}

// Places a trie node by node, with the operations that take one node.
TEST(Placement, NodeByNodeEqualsAWholeBuild) {
    const Quiet quiet;
    LetterCoder coder;
    CDATWriter whole(&coder, false);
    CDATWriter single(&coder, false);
    std::vector<std::string> keys = {"A", "AB", "ABC", "B", "CAT", "CUT", "CUTE"};
    std::map<std::string, Dictionary::SInnerDATWUnit> units;
    for (int key = 1; key <= static_cast<int>(keys.size()); ++key) {
        const std::string& text = keys[static_cast<std::size_t>(key) - 1];
        whole.addKeys(text.c_str(), "same");
        single.addKeys(text.c_str(), "same");
        for (std::size_t length = 1; length <= text.size(); ++length) {
            std::vector<int> codes;
            for (std::size_t i = 0; i < length; ++i) codes.push_back(text[i] - '@');
            auto& unit = units
                             .try_emplace(text.substr(0, length),
                                          Dictionary::SInnerDATWUnit{
                                              codes, key, static_cast<int>(length) - 1, {}, {}, 0})
                             .first->second;
            (length < text.size() ? unit.passingKeys : unit.endingKeys).insert(key);
        }
    }
    std::set<Dictionary::SInnerDATWUnit*, Dictionary::CWriteSort> order;
    std::set<Dictionary::SInnerDATWUnit*, Dictionary::CUnitSort> byPrefix;
    for (auto& entry : units) {
        order.insert(&entry.second);
        byPrefix.insert(&entry.second);
    }
    EXPECT_TRUE(std::equal(byPrefix.begin(), byPrefix.end(), units.begin(),
                           [](auto* unit, const auto& entry) { return unit == &entry.second; }));
    for (Dictionary::SInnerDATWUnit* unit : order) EXPECT_TRUE(single.buildDATWUnit(unit));
    single.writeFeature();
    EXPECT_TRUE(whole.buildDAT());
    std::vector<std::pair<std::string, std::string>> shown, expected;
    for (const std::string& key : keys) expected.emplace_back(key, "same");
    EXPECT_EQ(whole.show(shown), static_cast<int>(keys.size()));
    std::sort(shown.begin(), shown.end());
    EXPECT_EQ(shown, expected);

    const std::unique_ptr<char[]> wholeImage(whole.write());
    const std::unique_ptr<char[]> singleImage(single.write());
    ASSERT_EQ(whole.imageSize(), single.imageSize());
    EXPECT_EQ(0, std::memcmp(wholeImage.get(), singleImage.get(),
                             static_cast<std::size_t>(whole.imageSize())));

    // Without a clear, features are appended again.
    single.writeFeature();
    const std::unique_ptr<char[]> longer(single.write());
    EXPECT_EQ(single.imageSize(), whole.imageSize() + 12 + static_cast<int>(sizeof "same" - 1 + 4));
}

// Codes so large that their cells would be beyond what an image can hold.
class FarCoder : public LetterCoder {
public:
    FarCoder(std::size_t from, int shift) : m_from(from), m_shift(shift) {}

    int encodeString(const char* text, std::vector<int>& codes,
                     std::vector<Dictionary::SPOS>& positions, int length) override {
        LetterCoder::encodeString(text, codes, positions, length);
        for (std::size_t i = m_from; i < codes.size(); ++i) codes[i] += m_shift;
        return 1;
    }

private:
    std::size_t m_from;
    int m_shift;
};

TEST(Placement, GivesUpBeforeCellsWouldWrap) {
    using Keys = std::vector<const char*>;
    const std::tuple<Keys, std::size_t, int, int> rows[] = {{{"AB"}, 1, 2000000000, 1},
                                                            {{"AB", "AC"}, 1, 2000000000, 2},
                                                            {{"AB"}, 0, 64, 0},
                                                            {{"AB"}, 0, -2, 0}};
    for (const auto& [keys, from, shift, placed] : rows) {
        FarCoder coder(from, shift);
        CDATWriter writer(&coder, false);
        for (const char* key : keys) writer.addKeys(key, "");
        testing::internal::CaptureStdout();
        EXPECT_FALSE(writer.buildDAT());
        EXPECT_EQ(std::to_string(placed) + "wrong !!!!!\n", testing::internal::GetCapturedStdout());
    }
}

// A letter, and a number as the second code.
class NumberCoder : public LetterCoder {
public:
    int encodeString(const char* text, std::vector<int>& codes,
                     std::vector<Dictionary::SPOS>& positions, int) override {
        LetterCoder::encodeString(text, codes, positions, 1);
        codes.push_back(std::atoi(text + 1));
        return 1;
    }
};

// The labels of a node have all differences up to the square of kSide. So two such nodes must be at
// least that many cells apart.
TEST(Placement, KnowsWhatCannotFit) {
    constexpr int kSide = 2000;
    NumberCoder coder;
    for (const int nodes : {44, 45}) {
        Dictionary::TrieBuilder builder(coder.getNumOfSingleWord());
        for (int node = 0; node < nodes; ++node) {
            const std::string letter(1, static_cast<char>('@' + node));
            for (int i = 0; i < kSide; ++i) {
                for (const int number : {i, (i + 1) * kSide}) {
                    const std::string key = letter + std::to_string(number + node);
                    builder.addKey(coder, key.c_str(), false, "");
                }
            }
        }
        builder.clear();
        builder.storeFeatures();
        builder.makeTrie();
        EXPECT_EQ(builder.mayFit(), nodes < 45) << nodes;
    }
}

TEST(Placement, NeedsAtLeastTheCellsThatItIsSaidToNeed) {
    std::mt19937 random(5);
    LetterCoder coder;
    for (unsigned seed = 0; seed < 300; ++seed) {
        CDATWriter writer(&coder, false);
        Dictionary::KeyPool pool;
        const int letters = 2 + static_cast<int>(random() % 30);
        for (const std::string& key :
             randomKeys({seed, 300, letters, 3, true, false, false}, random)) {
            std::vector<int> codes;
            for (const char letter : key) codes.push_back(letter - '@');
            pool.add(codes);
            writer.addKeys(key.c_str(), "");
        }
        const Quiet quiet;
        writer.buildDAT();
        const std::unique_ptr<char[]> image(writer.write());
        const int reserved = coder.getNumOfSingleWord() + 1;
        EXPECT_LE(leastCells(Dictionary::KeyTrie(pool), 0), writer.imageSize() / 12 - reserved);
    }
}

TEST(Placement, GivesOutCellsBelowTheLimitOnly) {
    // The leading child of two, a cell that is taken, and the cell of the last child.
    const std::array<int, 3> rows[] = {{1, 0, 7}, {3, 0, 7}, {1, 7, 8}};
    for (const auto& [leading, taken, last] : rows) {
        for (const int limit : {last, last + 1}) {
            Dictionary::CellArray cells(4);
            cells.limitTo(limit);
            cells.takeChild(taken, 1);
            EXPECT_EQ(cells.findBase(leading, {1, 3}), limit > last ? last - 3 : -1) << leading;
            if (limit == last) continue;
            cells.takeChild(last, 1);
            // The count of cells stops where an image could not hold more.
            for (const int count : {limit, limit + 1, limit + 1}) {
                EXPECT_EQ(cells.countOneMore(), count);
            }
        }
    }
}

TEST(Placement, CanBeStoppedWhereNothingIsReported) {
    struct Calls : Dictionary::PlacementListener {
        void pause(std::uint64_t running, std::uint64_t) override { pauses.push_back(running); }
        void report(std::uint64_t running, std::uint64_t) override { reports.push_back(running); }
        std::vector<std::uint64_t> pauses, reports;
    } calls;
    LetterCoder coder;
    Dictionary::TrieBuilder builder(coder.getNumOfSingleWord());
    for (std::string key = "@@"; key[0] < 'D'; ++key[0]) {
        for (key[1] = '@'; key[1] <= 'p'; ++key[1]) builder.addKey(coder, key.c_str(), false, "");
    }
    builder.clear();
    builder.storeFeatures();
    builder.makeTrie();
    EXPECT_EQ(builder.place(calls), Dictionary::Placement::kPlaced);
    // Four nodes, each passed by 49 keys.
    EXPECT_EQ(calls.pauses, (std::vector<std::uint64_t>{49, 147}));
    EXPECT_TRUE(calls.reports.empty());
}

TEST(Placement, EveryWriteMakesTheImageOneCellLonger) {
    const Quiet quiet;
    LetterCoder coder;
    CDATWriter writer(&coder, false);
    writer.addKeys("AB", "x");
    writer.buildDAT();
    const std::unique_ptr<char[]> first(writer.write());
    const int size = writer.imageSize();
    const std::unique_ptr<char[]> second(writer.write());
    EXPECT_EQ(size + 12, writer.imageSize());

    // A raw dump does, too; without features a cell has two words.
    const std::size_t cells = (static_cast<std::size_t>(size) - sizeof("x...")) / 12 + 2;
    std::vector<std::int64_t> raw(cells);
    EXPECT_EQ(writer.write(raw.data(), false), raw.data() + cells);
}

TEST(FirstFit, EveryRegisterWidthGivesTheSameAnswer) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        const std::size_t streamCount = 1 + random() % 6;
        const std::size_t bytes = 1 + random() % 300;
        std::vector<std::vector<std::uint8_t>> bits(streamCount);
        std::vector<const std::uint8_t*> streams;
        for (auto& stream : bits) {
            stream.assign(bytes + Dictionary::kFirstFitSlack, 0xFF);
            for (std::size_t i = 0; i < bytes; ++i) {
                stream[i] = static_cast<std::uint8_t>(random() & random());
            }
            streams.push_back(stream.data());
        }
        std::int64_t expected = 0;
        const auto allSet = [&](std::int64_t position) {
            const auto index = static_cast<std::size_t>(position);
            return std::all_of(bits.begin(), bits.end(), [&](const auto& stream) {
                return (stream[index / 8] >> index % 8 & 1) != 0;
            });
        };
        while (!allSet(expected)) ++expected;
        forEachKernel(
            [&] { ASSERT_EQ(expected, Dictionary::firstFit(streams)) << "round " << round; });
    }
}

}  // namespace
