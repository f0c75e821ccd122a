// Helper, not installed: the search from every character of a text, in several images, in folded
// ones, and for whole words.

#ifndef DICTIONARY_SET_SEARCH_H
#define DICTIONARY_SET_SEARCH_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "EncodedText.h"
#include "KeyScan.h"
#include "SetKeys.h"
#include "SetText.h"
#include "TextSearch.h"
#include "Walk.h"

namespace Dictionary {

// A key in a text.
struct SetKey {
    std::size_t from;
    KeyAt key;
};

class SetSearch {
public:
    // `images` and `text` must outlive the object.
    SetSearch(const Images& images, const SetRules& rules, const SetText& text);

    // Calls `found(key)` for every key by start, end and image.
    template <class Found>
    void forEachKey(const Found& found) const;

    // The same for the longest keys at each character.
    template <class Found>
    void forEachLongestKey(const Found& found) const;

    // Calls `found(key)` for the longest key at the first character that begins one, and so on.
    template <class Found>
    void forEachSegment(const Found& found) const;

private:
    using Keys = std::vector<SetKey>;

    // What is searched of one image.
    struct Part {
        CellView cells;
        const EncodedText* text;
        const std::uint8_t* closed;  // by place, whether it is inside a word; null for none

        bool isClosed(std::size_t place) const { return closed != nullptr && closed[place] != 0; }
        TextSearch search() const;
    };

    // Passes keys of one image on.
    template <class Found>
    static auto keyTaker(std::uint32_t image, const Found& found) {
        return [=, &found](std::size_t from, std::size_t end, std::int32_t feature) {
            found(SetKey{from, {end, image, feature}});
        };
    }

    template <class Found>
    void forEachMergedKey(bool longestAlone, const Found& found) const;
    void listKeys(std::uint32_t image, std::size_t first, bool longestAlone, Keys& keys) const;
    void mergeKeys(const Keys& before, const Keys& image, bool longestAlone, Keys& merged) const;
    bool longestAt(std::size_t from, KeyAt& key) const;

    const SetRules m_rules;
    const SetText& m_text;
    std::vector<Part> m_parts;  // by the numbers of the images
    // By whether the text is folded: whether each place is inside a word; empty where none is.
    std::vector<std::uint8_t> m_insideWords[2];
};

template <class Found>
void SetSearch::forEachKey(const Found& found) const {
    if (m_parts.size() > 1) return forEachMergedKey(false, found);
    m_parts.front().search().forEachKey(kAlphabet, keyTaker(0, found));
}

template <class Found>
void SetSearch::forEachLongestKey(const Found& found) const {
    if (m_parts.size() > 1) return forEachMergedKey(true, found);
    m_parts.front().search().forEachLongestKey(kAlphabet, keyTaker(0, found));
}

template <class Found>
void SetSearch::forEachSegment(const Found& found) const {
    if (m_parts.size() == 1) return m_parts.front().search().forEachSegment(keyTaker(0, found));
    KeyAt key = {};
    for (std::size_t from = 0; from < m_text.any().size();) {
        const bool isKey = longestAt(from, key);
        if (isKey) found(SetKey{from, key});
        from = isKey ? key.end : from + 1;
    }
}

// Block by block. Keys of one start are in one block.
template <class Found>
void SetSearch::forEachMergedKey(bool longestAlone, const Found& found) const {
    Keys keys, ofImage, merged;
    for (std::size_t first = 0; first < m_text.any().size(); first += TextSearch::kBlock) {
        listKeys(0, first, longestAlone, keys);
        for (std::uint32_t image = 1; image < m_parts.size(); ++image) {
            listKeys(image, first, longestAlone, ofImage);
            if (ofImage.empty()) continue;
            mergeKeys(keys, ofImage, longestAlone, merged);
            keys.swap(merged);
        }
        for (const SetKey& key : keys) found(key);
    }
}

}  // namespace Dictionary

#endif
