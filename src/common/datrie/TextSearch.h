// Helper, not installed: the search from every character of a text.

#ifndef DICTIONARY_TEXT_SEARCH_H
#define DICTIONARY_TEXT_SEARCH_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "EncodedText.h"
#include "ImageFormat.h"
#include "Walk.h"
#include "WalkBlock.h"
#include "WalkStep.h"

namespace Dictionary {

// Finds keys in an encoded text. They are reported by character numbers, `from` up to but without
// `end`, and by the byte offset of their feature record.
class TextSearch {
public:
    TextSearch(const CellView& cells, const EncodedText& text)
        : TextSearch(cells, text, cells.childLimit() < kBlocksPay ? nullptr : walkSteps()) {}

    // Walks in blocks by `steps` or, where that is null, one by one; the keys are the same.
    TextSearch(const CellView& cells, const EncodedText& text, const WalkSteps* steps)
        : m_cells(cells), m_text(text), m_steps(steps) {}

    // Leaves keys out that begin or end at a place whose entry in `closed` is not 0; there is one
    // for each place, that at the end included.
    void closePlaces(const std::uint8_t* closed) { m_closed = closed; }

    // Calls `found(from, end, feature)` for every key that begins at a character of the alphabet,
    // by `from`, then by `end`.
    template <class Found>
    void forEachKey(std::int32_t alphabet, Found found) const {
        forEachKeyBetween(0, m_text.size(), alphabet, found);
    }

    // The same for the keys that begin in the block of characters from `first` on.
    static constexpr std::size_t kBlock = WalkBlock::kMaxWalks;
    template <class Found>
    void forEachKeyIn(std::size_t first, std::int32_t alphabet, Found found) const {
        forEachKeyBetween(first, std::min(first + kBlock, m_text.size()), alphabet, found);
    }

    // Calls `found(from, end, feature)` for the longest key at every character of the alphabet.
    template <class Found>
    void forEachLongestKey(std::int32_t alphabet, Found found) const {
        forEachStretch(
            0, m_text.size(), alphabet,
            [&](WalkBlock& block, std::size_t first, auto foundIn) {
                tellLongest(block, first, foundIn);
            },
            found, [&](std::size_t from) { searchLongest(from, alphabet, found); });
    }

    // Calls `found(from, end, feature)` for the longest key at the first character that begins one,
    // then at the first after that key, and so on.
    template <class Found>
    void forEachSegment(Found found) const {
        if (m_closed == nullptr) return segment(m_cells, m_text, found);
        for (std::size_t from = 0; from < m_text.size();) {
            const LongestKey longest = longestBetweenOpen(from);
            if (longest.found) found(from, longest.end, longest.feature);
            from = longest.end;
        }
    }

private:
    // Images of fewer cells fit the caches of today's machines well enough that walks one by one,
    // whose course the processor guesses ahead, are as fast.
    static constexpr std::uint32_t kBlocksPay = 2'000'000;

    template <class Found>
    void forEachKeyBetween(std::size_t first, std::size_t end, std::int32_t alphabet,
                           Found& found) const {
        forEachStretch(
            first, end, alphabet,
            [](WalkBlock& block, std::size_t, auto foundIn) { block.forEachKey(foundIn); }, found,
            [&](std::size_t from) {
                walkFrom(m_cells, m_text, from, alphabet,
                         [&](std::size_t keyEnd, std::int32_t feature) {
                             if (!isClosed(keyEnd)) found(from, keyEnd, feature);
                         });
            });
    }

    template <class FoundIn>
    void tellLongest(WalkBlock& block, std::size_t first, FoundIn foundIn) const {
        if (m_closed == nullptr) {
            return block.forEachLongestKey([](const BlockKey&) { return true; }, foundIn);
        }
        block.forEachLongestKey(
            [closed = m_closed + first](const BlockKey& key) {
                return closed[std::size_t{key.start} + key.length] == 0;
            },
            foundIn);
    }

    template <class Found>
    void searchLongest(std::size_t from, std::int32_t alphabet, Found& found) const {
        const LongestKey longest = longestToOpen(from, alphabet);
        if (longest.found) found(from, longest.end, longest.feature);
    }

    // The longest key at `from` that ends at an open place.
    LongestKey longestToOpen(std::size_t from, std::int64_t alphabet) const {
        LongestKey longest = {false, from + 1, kNoFeature};
        walkFrom(m_cells, m_text, from, alphabet, [&](std::size_t end, std::int32_t feature) {
            if (!isClosed(end)) longest = {true, end, feature};
        });
        return longest;
    }

    LongestKey longestBetweenOpen(std::size_t from) const {
        if (m_text.isInsidePair(from) || isClosed(from)) return {false, from + 1, kNoFeature};
        return longestToOpen(from, kNoAlphabet);
    }

    // Searches from the characters from `begin` up to, but without, `end`, block by block or all at
    // once one by one: `tell(block, first, foundIn)` calls `foundIn` with the keys of a block,
    // `searchFrom(from)` is called for each character otherwise.
    template <class Tell, class Found, class SearchFrom>
    void forEachStretch(std::size_t begin, std::size_t end, std::int32_t alphabet, Tell tell,
                        Found& found, SearchFrom searchFrom) const {
        if (m_steps == nullptr) return forEachStart(begin, end, alphabet, searchFrom);
        WalkBlock block(m_cells, alphabet, *m_steps);
        for (std::size_t first = begin; first < end; first += kBlock) {
            const std::size_t count = std::min(kBlock, end - first);
            if (!walk(block, first, static_cast<std::uint32_t>(count))) {
                forEachStart(first, first + count, alphabet, searchFrom);
                continue;
            }
            tell(block, first, [&](const BlockKey& key) {
                const std::size_t from = first + key.start, keyEnd = from + key.length;
                if (m_text.isInsidePair(from) || isClosed(keyEnd)) return;
                found(from, keyEnd, m_cells.featureOf(key.cell));
            });
        }
    }

    bool walk(WalkBlock& block, std::size_t first, std::uint32_t count) const {
        const std::int32_t* const codes = m_text.codes() + first;
        if (m_closed == nullptr) return block.walk(codes, count);
        return block.walkWhere(codes, count, [closed = m_closed + first](std::uint32_t start) {
            return closed[start] == 0;
        });
    }

    template <class SearchFrom>
    void forEachStart(std::size_t first, std::size_t end, std::int32_t alphabet,
                      SearchFrom searchFrom) const {
        for (std::size_t from = first; from < end; ++from) {
            const bool begins = m_text.codes()[from] < alphabet && !m_text.isInsidePair(from);
            if (begins && !isClosed(from)) searchFrom(from);
        }
    }

    bool isClosed(std::size_t place) const { return m_closed != nullptr && m_closed[place] != 0; }

    CellView m_cells;
    const EncodedText& m_text;
    const WalkSteps* m_steps;
    const std::uint8_t* m_closed = nullptr;
};

}  // namespace Dictionary

#endif
