// Helper, not installed: the walk that all lookups share.

#ifndef DICTIONARY_TEXT_SEARCH_H
#define DICTIONARY_TEXT_SEARCH_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "EncodedText.h"
#include "ImageFormat.h"
#include "Walk.h"
#include "WalkBlock.h"
#include "WalkStep.h"

namespace Dictionary {

// Finds keys in an encoded text. Keys are reported by character numbers: `from`, `to` (inclusive)
// and the byte offset of their feature record.
class TextSearch {
public:
    TextSearch(const CellView& cells, const EncodedText& text, WalkStep step = fastestWalkStep())
        : m_cells(cells), m_text(text), m_step(step) {}

    // Calls `found(to, feature)` for every key that begins at character `from`, shortest first.
    template <class Found>
    void walk(std::size_t from, std::int64_t alphabet, Found found) const {
        const std::int32_t* const codes = m_text.codes() + from;
        if (!m_cells.holds(*codes)) return;
        walkOn(m_cells, *codes, codes + 1, alphabet,
               [&](std::size_t passed, std::int64_t, const Cell& cell) {
                   found(from + passed, cell.feature);
               });
    }

    // Calls `found(from, to, feature)` for every key that begins at a character of the alphabet,
    // by `from`, then by `to`. With `firstOnly`, only at the first such character.
    template <class Found>
    void forEachKey(std::int32_t alphabet, bool firstOnly, Found found) const {
        if (firstOnly) return forEachKeyAtFirst(alphabet, found);
        forEachBlock(
            alphabet, [](WalkBlock& block, auto foundIn) { block.forEachKey(foundIn); }, found,
            [&](std::size_t from) {
                walk(from, alphabet,
                     [&](std::size_t to, std::int32_t feature) { found(from, to, feature); });
            });
    }

    // Calls `found(from, to, feature)` for the longest key at every character.
    template <class Found>
    void forEachLongestKey(std::int32_t alphabet, Found found) const {
        forEachBlock(
            alphabet, [](WalkBlock& block, auto foundIn) { block.forEachLongestKey(foundIn); },
            found,
            [&](std::size_t from) {
                const Longest longest = longestFrom(from, alphabet);
                if (longest.found) found(from, longest.to, longest.feature);
            });
    }

    // Calls `found(from, to, feature)` for the longest key at the first character that begins one,
    // then at the first after that key, and so on.
    // Kept: the codes are not tested against the alphabet.
    template <class Found>
    void segment(Found found) const {
        std::size_t from = 0;
        while (from < m_text.size()) {
            const Longest longest = longestFrom(from, kNoAlphabet);
            if (longest.found) found(from, longest.to, longest.feature);
            from = (longest.found ? longest.to : from) + 1;
        }
    }

    static constexpr std::int64_t kNoAlphabet = std::numeric_limits<std::int64_t>::max();

private:
    // Searches block by block: `tell(block, foundIn)` hands out the keys of one, and
    // `searchFrom(from)` is called for each character of a block whose keys are too many for that.
    template <class Tell, class Found, class SearchFrom>
    void forEachBlock(std::int32_t alphabet, Tell tell, Found found, SearchFrom searchFrom) const {
        WalkBlock block(m_cells, alphabet, m_step);
        for (std::size_t first = 0; first < m_text.size(); first += WalkBlock::kMaxWalks) {
            const std::size_t count =
                std::min<std::size_t>(WalkBlock::kMaxWalks, m_text.size() - first);
            const std::int32_t* const codes = m_text.codes() + first;
            if (block.walk(codes, static_cast<std::uint32_t>(count))) {
                tell(block, [&](const BlockKey& key) {
                    const std::size_t from = first + key.start;
                    found(from, from + key.length - 1, m_cells.featureOf(key.cell));
                });
                continue;
            }
            for (std::size_t i = 0; i < count; ++i) {
                if (codes[i] < alphabet) searchFrom(first + i);
            }
        }
    }

    template <class Found>
    void forEachKeyAtFirst(std::int32_t alphabet, Found found) const {
        const std::int32_t* const end = m_text.codes() + m_text.size();
        const std::int32_t* const first =
            std::find_if(m_text.codes(), end, [&](std::int32_t code) { return code < alphabet; });
        if (first == end) return;
        const auto from = static_cast<std::size_t>(first - m_text.codes());
        walk(from, alphabet,
             [&](std::size_t to, std::int32_t feature) { found(from, to, feature); });
    }

    struct Longest {
        bool found;
        std::size_t to;
        std::int32_t feature;
    };

    Longest longestFrom(std::size_t from, std::int64_t alphabet) const {
        Longest longest = {false, from, 0};
        walk(from, alphabet, [&](std::size_t to, std::int32_t feature) {
            longest = {true, to, feature};
        });
        return longest;
    }

    CellView m_cells;
    const EncodedText& m_text;
    WalkStep m_step;
};

}  // namespace Dictionary

#endif
