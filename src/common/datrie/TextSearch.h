// Helper, not installed: the walk that all lookups share.

#ifndef DICTIONARY_TEXT_SEARCH_H
#define DICTIONARY_TEXT_SEARCH_H

#include <cstddef>
#include <cstdint>
#include <limits>

#include "EncodedText.h"
#include "ImageFormat.h"

namespace Dictionary {

// Finds keys in an encoded text. Keys are reported by character numbers: `from`, `to` (inclusive)
// and the byte offset of their feature record.
class TextSearch {
public:
    TextSearch(const CellView& cells, const EncodedText& text) : m_cells(cells), m_text(text) {}

    // Walks from character `from` as far as the trie goes and calls `found(to, feature)` for every
    // key on the way, shortest first.
    // Kept: a code at or beyond `alphabet` ends the walk before the key in front of it is reported.
    template <class Found>
    void walk(std::size_t from, std::int64_t alphabet, Found found) const {
        const std::int32_t* codes = m_text.codes();
        std::int64_t index = codes[from];
        if (!m_cells.holds(index)) return;
        Cell cell = m_cells[index];
        for (std::size_t next = from + 1; codes[next] < alphabet; ++next) {
            if (endsKey(cell)) found(next - 1, cell.feature);
            if (!m_cells.descend(cell, index, codes[next])) return;
        }
    }

    // Calls `found(from, to, feature)` for every key that begins at a character of the alphabet,
    // by `from`, then by `to`. With `firstOnly`, only at the first such character.
    template <class Found>
    void forEachKey(std::int64_t alphabet, bool firstOnly, Found found) const {
        for (std::size_t from = 0; from < m_text.size(); ++from) {
            if (m_text.codes()[from] >= alphabet) continue;
            walk(from, alphabet,
                 [&](std::size_t to, std::int32_t feature) { found(from, to, feature); });
            if (firstOnly) return;
        }
    }

    // Calls `found(from, to, feature)` for the longest key at every character.
    template <class Found>
    void forEachLongestKey(std::int64_t alphabet, Found found) const {
        for (std::size_t from = 0; from < m_text.size(); ++from) {
            if (m_text.codes()[from] >= alphabet) continue;
            const Longest longest = longestFrom(from, alphabet);
            if (longest.found) found(from, longest.to, longest.feature);
        }
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
};

}  // namespace Dictionary

#endif
