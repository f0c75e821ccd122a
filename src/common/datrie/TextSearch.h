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
    TextSearch(const CellView& cells, const EncodedText& text,
               const WalkSteps& steps = fastestWalkSteps())
        : m_cells(cells), m_text(text), m_steps(steps) {}

    // Calls `found(from, end, feature)` for every key that begins at a character of the alphabet,
    // by `from`, then by `end`.
    template <class Found>
    void forEachKey(std::int32_t alphabet, Found found) const {
        forEachBlock(
            alphabet, [](WalkBlock& block, auto foundIn) { block.forEachKey(foundIn); }, found,
            [&](std::size_t from) {
                walkFrom(m_cells, m_text, from, alphabet,
                         [&](std::size_t end, std::int32_t feature) { found(from, end, feature); });
            });
    }

    // Calls `found(from, end, feature)` for the longest key at every character of the alphabet.
    template <class Found>
    void forEachLongestKey(std::int32_t alphabet, Found found) const {
        forEachBlock(
            alphabet, [](WalkBlock& block, auto foundIn) { block.forEachLongestKey(foundIn); },
            found,
            [&](std::size_t from) {
                const LongestKey longest = longestFrom(m_cells, m_text, from, alphabet);
                if (longest.found) found(from, longest.end, longest.feature);
            });
    }

private:
    // Searches block by block: `tell(block, foundIn)` hands out the keys of one, and
    // `searchFrom(from)` is called for each character of a block whose keys are too many for that.
    template <class Tell, class Found, class SearchFrom>
    void forEachBlock(std::int32_t alphabet, Tell tell, Found found, SearchFrom searchFrom) const {
        WalkBlock block(m_cells, alphabet, m_steps);
        for (std::size_t first = 0; first < m_text.size(); first += WalkBlock::kMaxWalks) {
            const std::size_t count =
                std::min<std::size_t>(WalkBlock::kMaxWalks, m_text.size() - first);
            const std::int32_t* const codes = m_text.codes() + first;
            if (block.walk(codes, static_cast<std::uint32_t>(count))) {
                tell(block, [&](const BlockKey& key) {
                    const std::size_t from = first + key.start;
                    if (m_text.isInsidePair(from)) return;
                    found(from, from + key.length, m_cells.featureOf(key.cell));
                });
                continue;
            }
            for (std::size_t i = 0; i < count; ++i) {
                const bool begins = codes[i] < alphabet && !m_text.isInsidePair(first + i);
                if (begins) searchFrom(first + i);
            }
        }
    }

    CellView m_cells;
    const EncodedText& m_text;
    const WalkSteps& m_steps;
};

}  // namespace Dictionary

#endif
