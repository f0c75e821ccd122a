// Helper, not installed: the cheapest way to cut a text into keys and unknown characters.

#ifndef DICTIONARY_CHEAPEST_PATH_H
#define DICTIONARY_CHEAPEST_PATH_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ImageFormat.h"
#include "InsideWords.h"
#include "LabelText.h"
#include "SetText.h"
#include "Walk.h"
#include "Weights.h"

namespace Dictionary {

// An image to segment with, and its weights.
struct WeightedImage {
    ImageView image;
    bool isFolded;
    Weights weights;
    std::size_t longestKey = 0;  // in labels
};
// If a stretch is a key of several images, the last of them counts.
struct WeightedImages {
    std::vector<WeightedImage> images;
    double unknownWeight = 0;  // of a character where no key begins
};

// Cuts texts one after the other and reuses its memory: one byte for each byte of the text, and a
// constant.
class CheapestPath {
public:
    // With `wholeWords` no key begins or ends inside a word.
    CheapestPath(const WeightedImages& images, bool wholeWords)
        : m_images(images),
          m_wholeWords(wholeWords),
          m_formsDiffer(formsDiffer()),
          m_lookahead(lookahead()) {}

    // Cuts `text`, which must last as long as its pieces are asked for.
    void cut(std::string_view text);

    // Calls `found(start, end, image, feature)` for each key of the path, in order, until it
    // returns false. Returns false if it did. `start` and `end` are in bytes.
    template <class Found>
    bool forEachKey(Found found) const;

private:
    // What begins at a byte: a key of so many bytes, or one of these.
    static constexpr std::uint8_t kNoKey = 0;
    static constexpr std::uint8_t kLongKey = 255;

    struct LongKey {
        std::size_t start;
        std::size_t bytes;
    };
    // Where a key in a text comes from.
    struct Source {
        std::uint32_t image;
        std::int32_t feature;
    };
    // A key between two labels of the window.
    struct FoundKey {
        std::size_t from;
        std::size_t end;
        double weight;
        Source source;
    };

    // A part of the text, as labels.
    struct Window {
        SetText labels;
        InsideWords insideWords[2];  // by whether the labels are folded
    };

    bool formsDiffer() const;
    std::size_t lookahead() const;
    std::size_t windowStart(std::size_t end) const;
    void cutWindow(std::size_t start, std::size_t end);
    void cutBlock(const EncodedText& labels, std::size_t first, std::size_t end, std::size_t start);
    void cutAt(const EncodedText& labels, std::size_t from, std::size_t start);
    void note(std::size_t start, std::size_t bytes, Source source);

    void findInsideWords(Window& window, std::size_t start, std::size_t end) const;
    void findKeys(const Window& window, std::size_t first, std::size_t end);
    void findKeysOf(std::uint32_t image, const Window& window, std::size_t first, std::size_t end);
    void mergeKeys();
    bool isInsideWord(const WeightedImage& weighted, std::size_t place) const;

    template <class Found>
    bool findKey(std::size_t start, std::size_t end, Found found) const;

    const WeightedImages& m_images;
    const bool m_wholeWords;
    const bool m_formsDiffer;       // whether some images are folded and some are not
    const std::size_t m_lookahead;  // in bytes; no key is longer
    std::string_view m_text;
    std::vector<std::uint8_t> m_keys;  // by the byte at which they begin
    std::vector<LongKey> m_longKeys;   // from the last one to the first
    // By the byte at which the key begins. Only for the beginning of the text; keys after that are
    // looked up again.
    std::vector<Source> m_sources;
    std::vector<double> m_scores;  // by label of the window: of the best path from it to the end
    std::vector<double> m_laterScores;
    std::vector<FoundKey> m_found;  // in a block of labels, by start, shortest first
    std::vector<FoundKey> m_ofImage, m_merged;
    std::size_t m_left = 0;  // how many of m_found are still to be chosen from
};

// Calls `found(image, feature)` for the key in the bytes from `start` up to, not including, `end`.
// If several images have the key there, the last of them counts.
template <class Found>
bool CheapestPath::findKey(std::size_t start, std::size_t end, Found found) const {
    const std::string_view key = m_text.substr(start, end - start);
    bool going = true;
    for (std::size_t i = m_images.images.size(), done = 0; i-- > done;) {
        const auto foundHere = [&](std::int32_t feature) {
            going = found(static_cast<std::uint32_t>(i), feature);
            done = i;
        };
        const WeightedImage& weighted = m_images.images[i];
        // If all images read the text in the same form, both ends are known not to be inside words.
        if (m_formsDiffer && (isInsideWord(weighted, start) || isInsideWord(weighted, end))) {
            continue;
        }
        if (weighted.isFolded) {
            findWholeKey(weighted.image.cells(), FoldedText(key), kNoAlphabet, foundHere);
        } else {
            findWholeKey(weighted.image.cells(), LabelText(key), kNoAlphabet, foundHere);
        }
    }
    return going;
}

template <class Found>
bool CheapestPath::forEachKey(Found found) const {
    std::size_t longKeys = m_longKeys.size();
    for (std::size_t start = 0; start < m_text.size();) {
        std::size_t bytes = m_keys[start];
        if (bytes == kNoKey) {
            ++start;
            continue;
        }
        if (bytes == kLongKey) {
            while (m_longKeys[longKeys - 1].start < start) --longKeys;
            bytes = m_longKeys[longKeys - 1].bytes;
        }
        const std::size_t end = start + bytes;
        const auto foundHere = [&](std::uint32_t image, std::int32_t feature) {
            return found(start, end, image, feature);
        };
        const bool isGoing = start < m_sources.size()
                                 ? foundHere(m_sources[start].image, m_sources[start].feature)
                                 : findKey(start, end, foundHere);
        if (!isGoing) return false;
        start = end;
    }
    return true;
}

}  // namespace Dictionary

#endif
