// All lookups against a model that is a map from key to feature text.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "BoundaryText.h"
#include "DATReader.h"
#include "DATWriter.h"
#include "LetterCoder.h"

namespace {

using Dictionary::CDATReader;
using Dictionary::CDATWriter;
using Dictionary::ICoderInterface;
using Dictionary::SPOS;

struct Found {
    int start;
    int end;
    std::string feature;
    bool operator==(const Found& other) const {
        return start == other.start && end == other.end && feature == other.feature;
    }
};

std::ostream& operator<<(std::ostream& out, const Found& found) {
    return out << found.start << '-' << found.end << ':' << found.feature;
}

using Model = std::map<std::string, std::string>;

// Positions at which a character starts, and the text's end.
std::vector<int> boundaries(const std::string& text) {
    std::vector<int> result;
    for (int i = 0; i <= static_cast<int>(text.size()); ++i) {
        const bool inside = (static_cast<unsigned char>(text.c_str()[i]) & 0xC0) == 0x80;
        if (!inside) result.push_back(i);
    }
    return result;
}

void addIfKey(const Model& model, const std::string& text, int from, int to,
              std::vector<Found>& found) {
    const auto key = model.find(
        text.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from)));
    if (key != model.end()) found.push_back({from, to - 1, key->second});
}

std::vector<Found> everyKey(const Model& model, const std::string& text, bool reverse) {
    std::vector<Found> found;
    const std::vector<int> cuts = boundaries(text);
    for (std::size_t i = 0; i < cuts.size(); ++i) {
        for (std::size_t j = reverse ? 0 : i + 1; j < (reverse ? i : cuts.size()); ++j) {
            addIfKey(model, text, cuts[reverse ? j : i], cuts[reverse ? i : j], found);
        }
    }
    return found;
}

// Greedy segmentation; a reversed one runs from the end and is turned round.
std::vector<Found> segments(const Model& model, const std::string& text, bool reverse) {
    std::vector<Found> result;
    const std::vector<int> cuts = boundaries(text);
    const int last = static_cast<int>(cuts.size()) - 1;
    const int step = reverse ? -1 : 1;
    int at = reverse ? last : 0;
    const int stop = last - at;
    const auto cut = [&](int index) { return cuts[static_cast<std::size_t>(index)]; };
    while (at != stop) {
        std::vector<Found> longest;
        int next = at + step;
        for (int to = at + step; to != stop + step; to += step) {
            const std::size_t before = longest.size();
            addIfKey(model, text, std::min(cut(at), cut(to)), std::max(cut(at), cut(to)), longest);
            if (longest.size() > before) next = to;
        }
        if (!longest.empty()) result.push_back(longest.back());
        at = next;
    }
    if (reverse) std::reverse(result.begin(), result.end());
    return result;
}

class Lookup {
public:
    Lookup(ICoderInterface& coder, const Model& model, bool reverse)
        : m_model(model), m_reverse(reverse) {
        testing::internal::CaptureStdout();
        CDATWriter writer(&coder, reverse);
        for (const auto& [key, feature] : model) writer.addKeys(key.c_str(), feature);
        writer.buildDAT();
        testing::internal::GetCapturedStdout();
        const std::unique_ptr<char[]> image(writer.write());
        m_image = std::make_unique<GuardedBytes>(
            std::string(image.get(), static_cast<std::size_t>(writer.imageSize())));
        std::memcpy(&m_features, image.get() + 8, sizeof m_features);
        m_reader = std::make_unique<CDATReader>(&coder, m_image->data(), reverse);
    }

    void check(const std::string& text) {
        std::vector<SPOS> records;
        m_reader->allMatch(text.c_str(), records, false, -1);
        const std::vector<Found> every = everyKey(m_model, text, m_reverse);
        EXPECT_EQ(every, withTexts(records)) << text;

        records.clear();
        m_reader->maxMatch(text.c_str(), records);
        EXPECT_EQ(segments(m_model, text, m_reverse), withTexts(records)) << text;

        std::string feature;
        m_reader->exactMatch(text.c_str(), feature);
        const bool findable = !m_reverse || text.size() == 1;
        const auto key = findable ? m_model.find(text) : m_model.end();
        EXPECT_EQ(key == m_model.end() ? "" : key->second, feature) << text;
        if (!m_reverse) checkGroups(text, every);
    }

private:
    void checkGroups(const std::string& text, const std::vector<Found>& every) {
        std::vector<std::vector<std::pair<int, std::string>>> expected(text.size());
        for (const Found& found : every) {
            expected[static_cast<std::size_t>(found.start)].emplace_back(
                found.end + 1 - found.start, found.feature);
        }
        std::vector<std::vector<std::pair<int, std::string>>> groups;
        m_reader->allMatch(text.c_str(), groups, false, -1);
        EXPECT_EQ(expected, groups) << text;
    }

    std::vector<Found> withTexts(const std::vector<SPOS>& records) const {
        std::vector<Found> result;
        for (const SPOS& record : records) {
            const char* feature = m_image->data() + m_features + record.feature;
            int length;
            std::memcpy(&length, feature, sizeof length);
            result.push_back({record.start, record.end,
                              std::string(feature + 4, static_cast<std::size_t>(length))});
        }
        return result;
    }

    Model m_model;
    bool m_reverse;
    int m_features = 0;
    std::unique_ptr<GuardedBytes> m_image;
    std::unique_ptr<CDATReader> m_reader;
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

// All dictionaries of up to three keys over two letters, times all texts up to six.
TEST(Lookup, EqualsTheModelOnAllSmallDictionaries) {
    std::vector<std::string> keys;
    std::vector<std::string> texts;
    forEachText({"A", "B"}, 3, [&](const std::string& key) { keys.push_back(key); });
    forEachText({"A", "B"}, 6, [&](const std::string& text) { texts.push_back(text); });
    keys.erase(keys.begin());
    LetterCoder coder;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        for (std::size_t j = i; j < keys.size(); ++j) {
            for (std::size_t k = j; k < keys.size(); ++k) {
                const Model model = {{keys[i], "1"}, {keys[j], "22"}, {keys[k], "333"}};
                for (const bool reverse : {false, true}) {
                    Lookup lookup(coder, model, reverse);
                    for (const std::string& text : texts) lookup.check(text);
                    ASSERT_FALSE(HasFailure()) << keys[i] << ' ' << keys[j] << ' ' << keys[k];
                }
            }
        }
    }
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
        Model model;
        for (int i = 0; i < 60; ++i) model[text(5) + letters[random() % 5]] = std::to_string(i);
        Lookup lookup(coder, model, round % 2 == 1);
        for (int i = 0; i < 200; ++i) lookup.check(text(40));
        for (const auto& entry : model) lookup.check(entry.first);
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
    for (const char* key : {"a", "ab", "abc", "b"}) writer.addKeys(key, key);
    testing::internal::CaptureStdout();
    writer.buildDAT();
    testing::internal::GetCapturedStdout();
    const std::unique_ptr<char[]> image(writer.write());
    CDATReader reader(&coder, image.get(), false);
    const Kept rows[] = {
        {"length", "abc", 2, false, {{0, 0}, {0, 1}, {1, 1}}, {{0, 2}}},
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
    std::vector<SPOS> untouched;
    CDATReader(&coder, nullptr, false).allMatch("ab", untouched, false, -1);
    reader.maxMatch(nullptr, untouched);
    EXPECT_TRUE(untouched.empty());
}

// Images of few cells, at the end of readable memory: no text leads outside.
TEST(Lookup, StaysInsideSmallImages) {
    Dictionary::CUTF8Coder coder;
    LetterCoder letters;
    for (const int keys : {0, 1}) {
        for (const bool nullCoder : {false, true}) {
            CDATWriter writer(nullCoder ? nullptr : static_cast<ICoderInterface*>(&letters), false);
            testing::internal::CaptureStdout();
            if (keys > 0) writer.addKeys("AB", "");
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
