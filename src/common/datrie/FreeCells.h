// Helper, not installed: which cells are free, and where a set of labels fits. Nothing in it knows
// about tries.

#ifndef DICTIONARY_FREE_CELLS_H
#define DICTIONARY_FREE_CELLS_H

#include <array>
#include <cstdint>
#include <vector>

#include "StringTable.h"

namespace Dictionary {

// A bitmap with one bit per cell; every cell after the last one taken is free. For wide searches it
// is kept in eight copies, each shifted by one more bit, so that one unaligned load reads the bits
// from any cell on. A search tests as many positions at a time as a register has bits.
class FreeCells {
public:
    // Cells 0 to reserved - 1 count as taken.
    explicit FreeCells(std::int64_t reserved);

    void take(std::int64_t cell);

    // The first free cell at or after `cell`.
    std::int64_t firstFrom(std::int64_t cell) const;

    // The first position p at or after `from` for which p and every p + offset is free. An offset
    // may be negative, but from + offset may not. Offsets are tested in their order.
    std::int64_t firstFit(std::int64_t from, const std::vector<std::int64_t>& offsets);

    // Releases the shifted copies, which cost time at every take. The next firstFit restores them.
    void dropCopies();

private:
    static constexpr unsigned kCopies = 8;

    void cover(std::int64_t cell);
    std::int64_t firstFit(std::int64_t from, const std::vector<std::int64_t>& offsets,
                          std::size_t count);
    std::int64_t search(std::int64_t from, const std::vector<std::int64_t>& offsets,
                        std::size_t count);
    void restoreCopies();
    const std::uint8_t* bitsFrom(std::int64_t cell) const;

    std::array<std::vector<std::uint8_t>, kCopies> m_copies;  // copy s: bit i is cell i + s
    unsigned m_copiesKept = kCopies;
    // Cells are only taken, never freed. So a set of offsets never fits before the position where
    // it fitted last, and neither does a larger set that begins with it.
    StringTable m_patterns;                      // sets of offsets, as their bytes
    std::vector<std::int64_t> m_bounds;          // where each fitted last
    std::vector<const std::uint8_t*> m_streams;  // scratch of search
    std::int64_t m_end;                          // every cell from here on is free
    std::int64_t m_covered;                      // cells that the bitmap holds
};

}  // namespace Dictionary

#endif
