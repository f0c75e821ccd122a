// All lookups twice: with a map from key to data, which is slow and obvious, and with an image.

#ifndef TESTS_LOOKUP_MODEL_H
#define TESTS_LOOKUP_MODEL_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "BoundaryText.h"
#include "DATReader.h"
#include "DATWriter.h"

struct Found {
    int start;
    int end;
    std::string feature;
    bool operator==(const Found& other) const {
        return start == other.start && end == other.end && feature == other.feature;
    }
};

inline std::ostream& operator<<(std::ostream& out, const Found& found) {
    return out << found.start << '-' << found.end << ':' << found.feature;
}

struct Answers {
    std::vector<Found> every;
    std::vector<Found> segments;
    std::vector<std::vector<std::pair<int, std::string>>> groups;
    std::string exact;
    bool operator==(const Answers& other) const {
        return every == other.every && segments == other.segments && groups == other.groups &&
               exact == other.exact;
    }
};

class LookupModel {
public:
    using Words = std::map<std::string, std::string>;

    LookupModel(Words words, bool reverse) : m_words(std::move(words)), m_reverse(reverse) {}

    Answers answers(const std::string& text) const {
        Answers answers = {everyKey(text), segments(text), {}, ""};
        answers.groups = grouped(answers.every, text.size());
        const auto key = m_words.find(text);
        const bool isFindable = !m_reverse || text.size() == 1;
        if (isFindable && key != m_words.end()) answers.exact = key->second;
        return answers;
    }

private:
    // Positions at which a character starts, and the text's end.
    static std::vector<int> boundaries(const std::string& text) {
        std::vector<int> result;
        for (int i = 0; i <= static_cast<int>(text.size()); ++i) {
            const bool inside = (static_cast<unsigned char>(text.c_str()[i]) & 0xC0) == 0x80;
            if (!inside) result.push_back(i);
        }
        return result;
    }

    void addIfKey(const std::string& text, int from, int to, std::vector<Found>& found) const {
        const auto key = m_words.find(
            text.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from)));
        if (key != m_words.end()) found.push_back({from, to - 1, key->second});
    }

    std::vector<Found> everyKey(const std::string& text) const {
        std::vector<Found> found;
        const std::vector<int> cuts = boundaries(text);
        for (std::size_t i = 0; i < cuts.size(); ++i) {
            for (std::size_t j = m_reverse ? 0 : i + 1; j < (m_reverse ? i : cuts.size()); ++j) {
                addIfKey(text, cuts[m_reverse ? j : i], cuts[m_reverse ? i : j], found);
            }
        }
        return found;
    }

    // Greedy segmentation. In reverse it runs from the end, and the result is reversed.
    std::vector<Found> segments(const std::string& text) const {
        std::vector<Found> result;
        const std::vector<int> cuts = boundaries(text);
        const int last = static_cast<int>(cuts.size()) - 1;
        const int step = m_reverse ? -1 : 1;
        int at = m_reverse ? last : 0;
        const int stop = last - at;
        const auto cut = [&](int index) { return cuts[static_cast<std::size_t>(index)]; };
        while (at != stop) {
            std::vector<Found> longest;
            int next = at + step;
            for (int to = at + step; to != stop + step; to += step) {
                const std::size_t before = longest.size();
                addIfKey(text, std::min(cut(at), cut(to)), std::max(cut(at), cut(to)), longest);
                if (longest.size() > before) next = to;
            }
            if (!longest.empty()) result.push_back(longest.back());
            at = next;
        }
        if (m_reverse) std::reverse(result.begin(), result.end());
        return result;
    }

    // A key that starts before the previous one is left out, and so are all keys after it.
    static decltype(Answers::groups) grouped(const std::vector<Found>& every, std::size_t size) {
        decltype(Answers::groups) groups(size);
        int least = 0;
        for (const Found& found : every) {
            if (found.start < least) break;
            least = found.start;
            groups[static_cast<std::size_t>(least)].emplace_back(found.end + 1 - least,
                                                                 found.feature);
        }
        return groups;
    }

    Words m_words;
    bool m_reverse;
};

// An image built from pairs of key and data, at the end of readable memory. Building prints the
// progress line.
class LookupImage {
public:
    template <class Pairs>
    LookupImage(Dictionary::ICoderInterface& coder, const Pairs& pairs, bool reverse)
        : m_bytes(build(coder, pairs, reverse)),
          m_guarded(m_bytes),
          m_reader(&coder, m_guarded.data(), reverse) {
        std::memcpy(&m_features, &m_bytes[8], sizeof m_features);
    }

    const std::string& bytes() const { return m_bytes; }
    char* guarded() const { return m_guarded.data(); }

    Answers answers(const std::string& text) {
        Answers answers;
        std::vector<Dictionary::SPOS> every;
        std::vector<Dictionary::SPOS> longest;
        m_reader.allMatch(text.c_str(), every, false, -1);
        m_reader.maxMatch(text.c_str(), longest);
        m_reader.allMatch(text.c_str(), answers.groups, false, -1);
        m_reader.exactMatch(text.c_str(), answers.exact);
        answers.every = withTexts(every);
        answers.segments = withTexts(longest);
        return answers;
    }

private:
    template <class Pairs>
    static std::string build(Dictionary::ICoderInterface& coder, const Pairs& pairs, bool reverse) {
        Dictionary::CDATWriter writer(&coder, reverse);
        for (const auto& [key, feature] : pairs) writer.addKeys(key.c_str(), feature);
        writer.buildDAT();
        const std::unique_ptr<char[]> image(writer.write());
        return {image.get(), static_cast<std::size_t>(writer.imageSize())};
    }

    std::vector<Found> withTexts(const std::vector<Dictionary::SPOS>& records) const {
        std::vector<Found> result;
        for (const Dictionary::SPOS& record : records) {
            const char* feature = m_guarded.data() + m_features + record.feature;
            int length;
            std::memcpy(&length, feature, sizeof length);
            result.push_back({record.start, record.end,
                              std::string(feature + 4, static_cast<std::size_t>(length))});
        }
        return result;
    }

    std::string m_bytes;
    GuardedBytes m_guarded;
    Dictionary::CDATReader m_reader;
    int m_features = 0;
};

#endif
