// Helper, not installed: the search from every character of a text, in several images, in folded
// ones, and for whole words.

#ifndef DICTIONARY_SET_SEARCH_H
#define DICTIONARY_SET_SEARCH_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "EncodedText.h"
#include "KeyScan.h"
#include "SetKeys.h"
#include "SetText.h"
#include "TextSearch.h"

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

    // Calls `found(key)` for the longest key at the first character that begins one, and so on. Of
    // one image alone.
    template <class Found>
    void forEachSegment(const Found& found) const {
        searchOf(0).forEachSegment([&](std::size_t from, std::size_t end, std::int32_t feature) {
            found(SetKey{from, {end, 0, feature}});
        });
    }

private:
    using Keys = std::vector<SetKey>;

    TextSearch searchOf(std::uint32_t image) const;
    template <class Found>
    void forEachKeyByBlock(bool longestAlone, const Found& found) const;
    void mergeKeysOf(std::uint32_t image, std::size_t first, Keys& keys, Keys& room) const;
    template <class Found>
    void chooseAmong(const SetKey* key, const SetKey* end, bool longestAlone,
                     const Found& found) const;

    const Images& m_images;
    const SetRules m_rules;
    const SetText& m_text;
    // By whether the text is folded: whether each place is inside a word.
    std::vector<std::uint8_t> m_insideWords[2];
};

template <class Found>
void SetSearch::forEachKey(const Found& found) const {
    if (m_images.size() > 1) return forEachKeyByBlock(false, found);
    searchOf(0).forEachKey(kAlphabet, [&](std::size_t from, std::size_t end, std::int32_t feature) {
        found(SetKey{from, {end, 0, feature}});
    });
}

template <class Found>
void SetSearch::forEachLongestKey(const Found& found) const {
    if (m_images.size() > 1) return forEachKeyByBlock(true, found);
    searchOf(0).forEachLongestKey(kAlphabet,
                                  [&](std::size_t from, std::size_t end, std::int32_t feature) {
                                      found(SetKey{from, {end, 0, feature}});
                                  });
}

// Keys of one start are in one block.
template <class Found>
void SetSearch::forEachKeyByBlock(bool longestAlone, const Found& found) const {
    Keys keys, room;
    for (std::size_t first = 0; first < m_text.any().size(); first += TextSearch::kBlock) {
        keys.clear();
        for (std::uint32_t image = 0; image < m_images.size(); ++image) {
            mergeKeysOf(image, first, keys, room);
        }
        const SetKey* const end = keys.data() + keys.size();
        for (const SetKey *key = keys.data(), *next; key != end; key = next) {
            next = std::find_if(key, end, [&](const SetKey& one) { return one.from != key->from; });
            chooseAmong(key, next, longestAlone, found);
        }
    }
}

// Of the keys of one start, by end and image, it hands on those that count.
template <class Found>
void SetSearch::chooseAmong(const SetKey* key, const SetKey* end, bool longestAlone,
                            const Found& found) const {
    const std::size_t longest = (end - 1)->key.end;
    for (; key != end; ++key) {
        const bool isRepeated = key + 1 != end && (key + 1)->key.end == key->key.end;
        if (isRepeated && !m_rules.everyImage) continue;
        if (!longestAlone || key->key.end == longest) found(*key);
    }
}

}  // namespace Dictionary

#endif
