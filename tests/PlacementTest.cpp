// The fast build against the literal one: identical cells, whatever the keys.

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>

#include "DATWriter.h"
#include "FirstFit.h"
#include "ImageFormat.h"
#include "LetterCoder.h"
#include "LiteralTrie.h"

namespace {

using Dictionary::CDATWriter;

class Quiet {
public:
    Quiet() { testing::internal::CaptureStdout(); }
    ~Quiet() { testing::internal::GetCapturedStdout(); }
};

struct KeySet {
    unsigned seed;
    int keys;
    int letters;  // of the alphabet
    int maxLength;
    bool sorted;
    bool reverse;
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

// Compares the raw cells, in which free ones can be told from used ones.
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

void buildBothWays(const KeySet& set) {
    std::mt19937 random(set.seed);
    LetterCoder coder;
    CDATWriter writer(&coder, set.reverse);
    LiteralTrie literal(coder.getNumOfSingleWord());
    const auto add = [&](const std::string& key) {
        const std::string feature = std::to_string(random() % 5);
        std::vector<int> codes;
        for (const char letter : key) codes.push_back(letter - '@');
        if (set.reverse) std::reverse(codes.begin(), codes.end());
        literal.add(codes, feature);
        ASSERT_TRUE(writer.addKeys(key.c_str(), feature));
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
    // A writer's dump makes its array one cell longer; a second build starts from a fresh one.
    if (set.seed % 3 != 0) return expectSameCells(writer, literal, set);
    for (const std::string& key : randomKeys(set, random)) add(key);
    build();
    expectSameCells(writer, literal, set);
}

TEST(Placement, EqualsTheLiteralRules) {
    std::mt19937 random(20261121);
    for (unsigned seed = 0; seed < 3000 && !testing::Test::HasFatalFailure(); ++seed) {
        const int letters = 1 + static_cast<int>(random() % 64);
        const int keys = static_cast<int>(random() % (seed % 50 == 0 ? 1500 : 60));
        const int maxLength = 1 + static_cast<int>(random() % 7);
        buildBothWays({seed, keys, letters, maxLength, random() % 2 == 0, random() % 2 == 0});
    }
}

// Places a random trie node by node, through the operations that take one node.
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
    for (auto& entry : units) order.insert(&entry.second);
    for (Dictionary::SInnerDATWUnit* unit : order) EXPECT_TRUE(single.buildDATWUnit(unit));
    single.writeFeature();
    EXPECT_TRUE(whole.buildDAT());

    const std::unique_ptr<char[]> wholeImage(whole.write());
    const std::unique_ptr<char[]> singleImage(single.write());
    ASSERT_EQ(whole.imageSize(), single.imageSize());
    EXPECT_EQ(0, std::memcmp(wholeImage.get(), singleImage.get(),
                             static_cast<std::size_t>(whole.imageSize())));
}

// Codes so large that their cells would lie beyond what an image can hold.
class FarCoder : public LetterCoder {
public:
    int encodeString(const char* text, std::vector<int>& codes,
                     std::vector<Dictionary::SPOS>& positions, int length) override {
        LetterCoder::encodeString(text, codes, positions, length);
        for (std::size_t i = 1; i < codes.size(); ++i) codes[i] += 2000000000;
        return 1;
    }
};

TEST(Placement, GivesUpBeforeCellsWouldWrap) {
    for (const auto& keys : {std::vector<const char*>{"AB"}, {"AB", "AC"}}) {
        FarCoder coder;
        CDATWriter writer(&coder, false);
        for (const char* key : keys) writer.addKeys(key, "");
        testing::internal::CaptureStdout();
        EXPECT_FALSE(writer.buildDAT());
        EXPECT_EQ(std::to_string(keys.size()) + "wrong !!!!!\n",
                  testing::internal::GetCapturedStdout());
    }
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
        for (const auto& kernel : Dictionary::firstFitKernels()) {
            ASSERT_EQ(expected, kernel.search(streams)) << kernel.name << ", round " << round;
        }
    }
}

}  // namespace
