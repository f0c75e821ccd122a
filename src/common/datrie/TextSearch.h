// Helper, not installed: the search from every character of a text.

#ifndef DICTIONARY_TEXT_SEARCH_H
#define DICTIONARY_TEXT_SEARCH_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "EncodedText.h"
#include "ImageFormat.h"
#include "Walk.h"
#include "WalkGroup.h"
#include "WalkTogether.h"

namespace Dictionary {

// Finds keys in an encoded text. A key is reported as its characters, `from` to `end` - 1, and the
// byte offset of its feature record.
class TextSearch {
public:
    TextSearch(const CellView& cells, const EncodedText& text)
        : m_cells(cells), m_text(text), m_together(walkTogether()) {}

    // Leaves out keys that begin or end at a place whose entry in `closed` is not 0. There is one
    // entry for each place, including the end of the text, and kClosedPadding more of any value.
    // Null closes no place.
    void closePlaces(const std::uint8_t* closed) { m_closed = closed; }
    static constexpr std::size_t kClosedPadding = WalkGroup::kReach;

    // Calls `found(from, end, feature)` for every key that begins at a character in the alphabet,
    // by `from`, then by `end`.
    template <class Found>
    void forEachKey(std::int32_t alphabet, Found found) const {
        forEachKeyBetween(0, m_text.size(), alphabet, found);
    }

    // The same for the keys that begin in the block of characters from `first` on.
    static constexpr std::size_t kBlock = WalkGroup::kWalks;
    template <class Found>
    void forEachKeyIn(std::size_t first, std::int32_t alphabet, Found found) const {
        forEachKeyBetween(first, blockEnd(first), alphabet, found);
    }

    // Calls `found(from, end, feature)` for the longest key at every character in the alphabet.
    template <class Found>
    void forEachLongestKey(std::int32_t alphabet, Found found) const {
        forEachLongestKeyBetween(0, m_text.size(), alphabet, found);
    }

    // The same for the keys that begin in the block of characters from `first` on.
    template <class Found>
    void forEachLongestKeyIn(std::size_t first, std::int32_t alphabet, Found found) const {
        forEachLongestKeyBetween(first, blockEnd(first), alphabet, found);
    }

    // Calls `found(from, end, feature)` for the longest key at the first character that begins one,
    // then at the first after that key, and so on.
    // Kept: the codes are not tested against an alphabet.
    template <class Found>
    void forEachSegment(Found found) const {
        const auto isOpen = [this](std::size_t place) { return this->isOpen(place); };
        if (m_closed == nullptr) {
            segment(m_cells, m_text, AnyPlace(), found);
        } else {
            segment(m_cells, m_text, isOpen, found);
        }
    }

private:
    std::size_t blockEnd(std::size_t first) const {
        return std::min(first + kBlock, m_text.size());
    }

    template <class Found>
    void forEachKeyBetween(std::size_t first, std::size_t end, std::int32_t alphabet,
                           Found& found) const {
        forEachGroup(first, end, alphabet, [&](const WalkGroup& group, std::size_t groupFirst) {
            forEachKeyOf(group, groupFirst, alphabet, found);
        });
    }

    template <class Found>
    void forEachLongestKeyBetween(std::size_t first, std::size_t end, std::int32_t alphabet,
                                  Found& found) const {
        forEachGroup(first, end, alphabet, [&](const WalkGroup& group, std::size_t groupFirst) {
            forEachLongestOf(group, groupFirst, alphabet, found);
        });
    }

    // Calls `use(group, first)` for groups of walks that together begin at the characters `begin`
    // to `end` - 1. The first walk of `group` begins at `first`.
    template <class Use>
    void forEachGroup(std::size_t begin, std::size_t end, std::int32_t alphabet, Use use) const {
        WalkGroup group;
        for (std::size_t first = begin; first < end; first += WalkGroup::kWalks) {
            const std::uint8_t* const closed = m_closed == nullptr ? nullptr : m_closed + first;
            const auto left =
                static_cast<std::uint32_t>(std::min<std::size_t>(end - first, WalkGroup::kWalks));
            m_together(m_cells, {m_text.codes() + first, closed, alphabet, left}, group);
            if (m_text.hasPairs()) dropInsidePairs(group, first);
            use(group, first);
        }
    }

    void dropInsidePairs(WalkGroup& group, std::size_t first) const {
        const auto* const end = std::remove_if(
            group.keys, group.keys + group.count,
            [&](const WalkGroup::Key& key) { return m_text.isInsidePair(first + key.from()); });
        group.count = static_cast<std::uint32_t>(end - group.keys);
    }

    template <class Found>
    void forEachKeyOf(const WalkGroup& group, std::size_t first, std::int32_t alphabet,
                      Found& found) const {
        for (std::uint32_t i = 0; i < group.count; ++i) {
            const WalkGroup::Key key = group.keys[i];
            const std::size_t from = first + key.from();
            if (key.isLeft()) {
                forEachKeyOn(key.cell, from, from + WalkGroup::kPlaces, alphabet, found);
            } else {
                found(from, from + key.steps() + 1, m_cells.featureOf(key.cell));
            }
        }
    }

    // Goes on with the walk from `from`, which has come to `cell` and `place`, and calls `found`
    // for its keys. Few walks are that long, so this is kept out of the loop over the others.
    template <class Found>
    [[gnu::noinline]] void forEachKeyOn(std::uint32_t cell, std::size_t from, std::size_t place,
                                        std::int32_t alphabet, Found& found) const {
        walkOn(m_cells, cell, m_text, place, alphabet, [&](std::size_t end, std::uint32_t reached) {
            if (isOpen(end)) found(from, end, m_cells.featureOf(reached));
        });
    }

    template <class Found>
    void forEachLongestOf(const WalkGroup& group, std::size_t first, std::int32_t alphabet,
                          Found& found) const {
        LongestKey longest = {0, LongestKey::kNone};
        for (std::uint32_t i = 0; i < group.count; ++i) {
            const WalkGroup::Key key = group.keys[i];
            const std::size_t from = first + key.from();
            if (key.isLeft()) {
                goOnToLongest(
                    m_cells, key.cell, m_text, from + WalkGroup::kPlaces, alphabet,
                    [&](std::size_t end) { return isOpen(end); }, longest);
            } else {
                longest = {from + key.steps() + 1, key.cell};
            }
            if (i + 1 < group.count && group.keys[i + 1].from() == key.from()) continue;
            if (longest.isFound()) found(from, longest.end, m_cells.featureOf(longest.cell));
            longest.cell = LongestKey::kNone;
        }
    }

    bool isOpen(std::size_t place) const { return m_closed == nullptr || m_closed[place] == 0; }

    CellView m_cells;
    const EncodedText& m_text;
    const WalkTogether m_together;
    const std::uint8_t* m_closed = nullptr;
};

}  // namespace Dictionary

#endif
