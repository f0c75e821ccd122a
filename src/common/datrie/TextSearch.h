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

    // Calls `found(from, end, feature)` for every key that begins at a character of the alphabet,
    // by `from`, then by `end`.
    template <class Found>
    void forEachKey(std::int32_t alphabet, Found found) const {
        forEachStretch(
            alphabet, [](WalkBlock& block, auto foundIn) { block.forEachKey(foundIn); }, found,
            [&](std::size_t from) {
                walkFrom(m_cells, m_text, from, alphabet,
                         [&](std::size_t end, std::int32_t feature) { found(from, end, feature); });
            });
    }

    // Calls `found(from, end, feature)` for the longest key at every character of the alphabet.
    template <class Found>
    void forEachLongestKey(std::int32_t alphabet, Found found) const {
        forEachStretch(
            alphabet, [](WalkBlock& block, auto foundIn) { block.forEachLongestKey(foundIn); },
            found,
            [&](std::size_t from) {
                const LongestKey longest = longestFrom(m_cells, m_text, from, alphabet);
                if (longest.found) found(from, longest.end, longest.feature);
            });
    }

    // Calls `found(from, end, feature)` for the longest key at the first character that begins one,
    // then at the first after that key, and so on.
    template <class Found>
    void forEachSegment(Found found) const {
        segment(m_cells, m_text, found);
    }

private:
    // Images of fewer cells fit the caches of today's machines well enough that walks one by one,
    // whose course the processor guesses ahead, are as fast.
    static constexpr std::uint32_t kBlocksPay = 2'000'000;

    // Searches block by block, or all at once one by one: `tell(block, foundIn)` calls `foundIn`
    // with the keys of a block, `searchFrom(from)` is called for each character otherwise.
    template <class Tell, class Found, class SearchFrom>
    void forEachStretch(std::int32_t alphabet, Tell tell, Found found,
                        SearchFrom searchFrom) const {
        if (m_steps == nullptr) return forEachStart(0, m_text.size(), alphabet, searchFrom);
        WalkBlock block(m_cells, alphabet, *m_steps);
        for (std::size_t first = 0; first < m_text.size(); first += WalkBlock::kMaxWalks) {
            const std::size_t count =
                std::min<std::size_t>(WalkBlock::kMaxWalks, m_text.size() - first);
            if (!block.walk(m_text.codes() + first, static_cast<std::uint32_t>(count))) {
                forEachStart(first, first + count, alphabet, searchFrom);
                continue;
            }
            tell(block, [&](const BlockKey& key) {
                const std::size_t from = first + key.start;
                if (m_text.isInsidePair(from)) return;
                found(from, from + key.length, m_cells.featureOf(key.cell));
            });
        }
    }

    template <class SearchFrom>
    void forEachStart(std::size_t first, std::size_t end, std::int32_t alphabet,
                      SearchFrom searchFrom) const {
        for (std::size_t from = first; from < end; ++from) {
            const bool begins = m_text.codes()[from] < alphabet && !m_text.isInsidePair(from);
            if (begins) searchFrom(from);
        }
    }

    CellView m_cells;
    const EncodedText& m_text;
    const WalkSteps* m_steps;
};

}  // namespace Dictionary

#endif
