// Helper, not installed: one walk through the cells of an image.

#ifndef DICTIONARY_WALK_H
#define DICTIONARY_WALK_H

#include <cstddef>
#include <cstdint>

#include "ImageFormat.h"

namespace Dictionary {

// Follows `codes` from the cell with number `index` as far as the trie goes, and calls
// `found(passed, index, cell)` for every cell on the way that ends a key, the first one included:
// `passed` counts the codes followed up to there. Behind the text stands a code that leads nowhere.
// Kept: a code at or beyond `alphabet` ends the walk before the key in front of it is reported.
template <class Found>
void walkOn(const CellView& cells, std::int64_t index, const std::int32_t* codes,
            std::int64_t alphabet, Found found) {
    Cell cell = cells[index];
    for (std::size_t passed = 0; codes[passed] < alphabet; ++passed) {
        if (endsKey(cell)) found(passed, index, cell);
        if (!cells.descend(cell, index, codes[passed])) return;
    }
}

}  // namespace Dictionary

#endif
