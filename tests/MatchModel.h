// Finds the matches of a text in a slow and obvious way: the text is a list of characters, and
// images are maps.

#ifndef TESTS_MATCH_MODEL_H
#define TESTS_MATCH_MODEL_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "Dictionary.h"
#include "LabelImage.h"

using Characters = std::vector<std::string>;

// The characters in these tests that words are made of.
const Characters kWordLetters = {"a",      "A",      "b",          "k",         "z",
                                 "\u00e9", "\u00c9", "\uff21",     "\u212a",    "\u023a",
                                 "\u2c65", "\u03b9", "\U00010400", "\U00010428"};
const Characters kWordMarks = {"\u0301", "\u0345"};

inline bool isOneOf(const Characters& characters, const std::string& character) {
    return std::count(characters.begin(), characters.end(), character) > 0;
}

struct Text {
    explicit Text(Characters characters) : plain(std::move(characters)) {
        for (const std::string& character : plain) folded.push_back(foldedSlowly(character));
    }

    std::size_t size() const { return plain.size(); }

    std::string bytes(std::size_t from, std::size_t to, bool isFolded = false) const {
        const Characters& characters = isFolded ? folded : plain;
        std::string bytes;
        for (std::size_t i = from; i < to; ++i) bytes += characters[i];
        return bytes;
    }

    std::size_t units(std::size_t from, std::size_t to, int unit) const {
        constexpr std::size_t kBytesOfPair = 4;
        if (unit == DICTIONARY_UNIT_BYTE) return bytes(from, to).size();
        std::size_t units = to - from;
        for (std::size_t i = from; unit == DICTIONARY_UNIT_UTF16 && i < to; ++i) {
            units += plain[i].size() == kBytesOfPair ? 1 : 0;
        }
        return units;
    }

    // Whether both sides of `place` belong to one word.
    bool isInsideWord(std::size_t place, bool isFolded) const {
        const Characters& characters = isFolded ? folded : plain;
        if (place == 0 || place == size()) return false;
        const std::string& after = characters[place];
        if (!isOneOf(kWordLetters, after) && !isOneOf(kWordMarks, after)) return false;
        while (place > 0 && isOneOf(kWordMarks, characters[place - 1])) --place;
        return place > 0 && isOneOf(kWordLetters, characters[place - 1]);
    }

    Characters plain;
    Characters folded;
};

// Start, length, data and image of each match.
using Found = std::vector<std::tuple<std::size_t, std::size_t, std::string, std::uint32_t>>;

// A key in a text.
struct ModelKey {
    std::size_t end;
    std::uint32_t image;
    bool isWhole;  // whether it neither begins nor ends inside a word
    const std::string* data;
};
using ModelKeys = std::vector<std::vector<ModelKey>>;  // by start, then by end and image

class MatchModel {
public:
    explicit MatchModel(const std::vector<Source>& sources) {
        for (const Source& source : sources) {
            m_images.push_back({source.isFolded, source.content()});
            for (const auto& [key, data] : m_images.back().words) m_union[key] = data;
        }
    }

    // All keys of all images. None has more characters than `longest`.
    ModelKeys keysIn(const Text& text, std::size_t longest) const {
        ModelKeys keys(text.size());
        for (std::size_t from = 0; from < text.size(); ++from) {
            const std::size_t end = std::min(text.size(), from + longest);
            for (std::size_t to = from + 1; to <= end; ++to) addKeys(text, from, to, keys[from]);
        }
        return keys;
    }

    // The keys of `all` that the options choose.
    Found find(const Text& text, const ModelKeys& all, const DictionaryFindOptions& options) const {
        Found found;
        const ModelKeys keys = candidates(all, options);
        const std::vector<const ModelKey*> cut = cheapest(keys);
        std::size_t units = 0;
        for (std::size_t from = 0, next; from < text.size(); from = next) {
            next = from + 1;
            for (const ModelKey& key : keys[from]) {
                if (!isChosen(key, keys[from], from, options.mode, cut[from])) continue;
                if (segments(options.mode)) next = key.end;
                found.emplace_back(units, text.units(from, key.end, options.unit), *key.data,
                                   key.image);
            }
            units += text.units(from, next, options.unit);
        }
        return found;
    }

    // Weighs keys as a segmenter does, by the counts or the costs in their first field.
    void weighCounts() {
        double total = 0;
        for (const auto& [key, data] : m_union) total += std::stod(data);
        m_logTotal = std::log(total);
        m_unknown = std::log(1.0) - m_logTotal;
        m_areCounts = true;
    }
    void weighCosts(double unknownCost) {
        m_unknown = -unknownCost;
        m_areCounts = false;
    }

private:
    struct Image {
        bool isFolded;
        Words words;
    };

    static bool segments(int mode) {
        return mode == DICTIONARY_FIND_SEGMENT || mode == DICTIONARY_FIND_WEIGHTED;
    }

    static bool isChosen(const ModelKey& key, const std::vector<ModelKey>& others, std::size_t from,
                         int mode, const ModelKey* cheapest) {
        if (mode == DICTIONARY_FIND_PREFIXES) return from == 0;
        if (mode == DICTIONARY_FIND_WEIGHTED) return &key == cheapest;
        return mode == DICTIONARY_FIND_ALL || key.end == others.back().end;
    }

    void addKeys(const Text& text, std::size_t from, std::size_t to,
                 std::vector<ModelKey>& keys) const {
        for (std::uint32_t number = 0; number < m_images.size(); ++number) {
            const auto& [isFolded, words] = m_images[number];
            const auto word = words.find(text.bytes(from, to, isFolded));
            if (word == words.end()) continue;
            const bool isCut = text.isInsideWord(from, isFolded) || text.isInsideWord(to, isFolded);
            keys.push_back({to, number, !isCut, &word->second});
        }
    }

    // The keys without those that the options leave out in every mode.
    static ModelKeys candidates(const ModelKeys& all, const DictionaryFindOptions& options) {
        ModelKeys candidates(all.size());
        for (std::size_t from = 0; from < all.size(); ++from) {
            for (const ModelKey& key : all[from]) {
                if (options.wholeWords && !key.isWhole) continue;
                std::vector<ModelKey>& keys = candidates[from];
                const bool repeats = !keys.empty() && keys.back().end == key.end;
                if (repeats && !options.everyImage) keys.pop_back();
                keys.push_back(key);
            }
        }
        return candidates;
    }

    double weightOf(const ModelKey& key) const {
        const double number = std::stod(*key.data);
        return m_areCounts ? std::log(number) - m_logTotal : -number;
    }

    // For each place, the key that begins there on the cheapest way to the end.
    std::vector<const ModelKey*> cheapest(const ModelKeys& keys) const {
        std::vector<const ModelKey*> chosen(keys.size());
        std::vector<double> best(keys.size() + 1);
        for (std::size_t from = keys.size(); from-- > 0;) {
            best[from] = m_unknown + best[from + 1];
            for (const ModelKey& key : keys[from]) {
                const double score = weightOf(key) + best[key.end];
                if (chosen[from] != nullptr && score < best[from]) continue;
                chosen[from] = &key;
                best[from] = score;
            }
        }
        return chosen;
    }

    std::vector<Image> m_images;
    Words m_union;  // a key of several images has the data of the last one
    double m_logTotal = 0;
    double m_unknown = 0;
    bool m_areCounts = false;
};

#endif
