// Helper, not installed: the search from every character of a text, in several images, in folded
// ones, and for whole words.

#ifndef DICTIONARY_SET_SEARCH_H
#define DICTIONARY_SET_SEARCH_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "EncodedText.h"
#include "InsideWords.h"
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

// Whether a key comes before one from `from` to `end`.
inline bool comesBefore(const SetKey& key, std::size_t from, std::size_t end) {
    return key.from != from ? key.from < from : key.key.end < end;
}

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

    // Passes on the keys of the first image.
    template <class Found>
    static auto takerOf(const Found& found) {
        return [&found](std::size_t from, std::size_t end, std::int32_t feature) {
            found(SetKey{from, {end, 0, feature}});
        };
    }

    // The keys of all images but the first, block by block.
    class LaterKeys {
    public:
        LaterKeys(const SetSearch& search, bool longestAlone)
            : m_search(search), m_longestAlone(longestAlone) {}

        // Whether none of them begins before `place` or at it.
        bool areAfter(std::size_t place) const { return place < m_start; }
        // The next key, if it begins before `place` or at it; else null.
        const SetKey* upTo(std::size_t place) {
            while (m_next == m_keys.size() && m_start <= place) fillBlock();
            return areAfter(place) ? nullptr : &m_keys[m_next];
        }
        void pass() {
            ++m_next;
            setStart();
        }

    private:
        void setStart() { m_start = m_next < m_keys.size() ? m_keys[m_next].from : m_blockEnd; }
        void fillBlock();
        void list(std::uint32_t image);
        void merge();

        const SetSearch& m_search;
        const bool m_longestAlone;
        Keys m_keys, m_ofImage, m_merged;  // of a block
        std::size_t m_next = 0;            // key
        std::size_t m_blockEnd = 0;
        std::size_t m_start = 0;  // of the next key, or where the next block begins
    };

    template <class Found>
    void forEachMergedKey(bool longestAlone, const Found& found) const;
    template <class Found>
    bool passLater(LaterKeys& later, bool longestAlone, std::size_t from, std::size_t end,
                   const Found& found) const;
    bool longestAt(std::size_t from, KeyAt& key) const;

    Part partOf(const OpenImage& image);
    std::uint32_t parts() const { return static_cast<std::uint32_t>(1 + m_others.size()); }
    const Part& part(std::uint32_t image) const {
        return image == 0 ? m_first : m_others[image - 1];
    }

    const SetRules m_rules;
    const SetText& m_text;
    InsideWords m_insideWords[2];  // by whether the text is folded
    const Part m_first;            // of image number 0, mostly the only one
    std::vector<Part> m_others;
};

template <class Found>
void SetSearch::forEachKey(const Found& found) const {
    if (parts() > 1) return forEachMergedKey(false, found);
    m_first.search().forEachKey(kAlphabet, takerOf(found));
}

template <class Found>
void SetSearch::forEachLongestKey(const Found& found) const {
    if (parts() > 1) return forEachMergedKey(true, found);
    m_first.search().forEachLongestKey(kAlphabet, takerOf(found));
}

template <class Found>
void SetSearch::forEachSegment(const Found& found) const {
    if (parts() == 1) return m_first.search().forEachSegment(takerOf(found));
    KeyAt key = {};
    for (std::size_t from = 0; from < m_text.any().size();) {
        const bool isKey = longestAt(from, key);
        if (isKey) found(SetKey{from, key});
        from = isKey ? key.end : from + 1;
    }
}

// The first image, which tends to be the largest, is searched as it would be alone, and the keys of
// the others come between its own. Of keys at the same stretch that of the later image counts, or
// each; where the longest count alone, there is one length at each start.
template <class Found>
void SetSearch::forEachMergedKey(bool longestAlone, const Found& found) const {
    if (m_text.any().size() == 0) return;
    LaterKeys later(*this, longestAlone);
    const auto merge = [&](std::size_t from, std::size_t end, std::int32_t feature) {
        const bool counts =
            later.areAfter(from) || passLater(later, longestAlone, from, end, found);
        if (counts) found(SetKey{from, {end, 0, feature}});
    };
    const TextSearch first = m_first.search();
    if (longestAlone) {
        first.forEachLongestKey(kAlphabet, merge);
    } else {
        first.forEachKey(kAlphabet, merge);
    }
    const std::size_t last = m_text.any().size() - 1;
    for (const SetKey* other; (other = later.upTo(last)) != nullptr; later.pass()) found(*other);
}

// Passes the later keys on that come before one of the first image. Whether that counts.
template <class Found>
bool SetSearch::passLater(LaterKeys& later, bool longestAlone, std::size_t from, std::size_t end,
                          const Found& found) const {
    const SetKey* other = later.upTo(from);
    for (; other != nullptr && comesBefore(*other, from, end); other = later.upTo(from)) {
        if (!longestAlone || other->from < from) found(*other);
        later.pass();
    }
    if (other == nullptr) return true;
    return other->key.end == end ? m_rules.everyImage : !longestAlone;
}

}  // namespace Dictionary

#endif
