// Helper, not installed: the cells of a double array under construction, with their growth, the
// marks in them and the search for a base. Nothing in it knows about keys.

#ifndef DICTIONARY_CELL_ARRAY_H
#define DICTIONARY_CELL_ARRAY_H

#include <cstdint>
#include <memory>
#include <vector>

#include "FreeCells.h"
#include "ImageFormat.h"

namespace Dictionary {

// Cells 0 to alphabetSize belong to the children of the root, each at the cell of its code; all
// other nodes come after them.
//
// The capacity is the number of cells that the array counts as allocated. It grows by doubling,
// while storage follows the cells that are in use.
class CellArray {
public:
    explicit CellArray(std::int32_t alphabetSize);

    // Drops all cells. Capacity, free hint and highest index stay.
    void clear();

    // The first cell after those of the root's children.
    std::int64_t firstShared() const { return std::int64_t{m_alphabetSize} + 1; }

    std::int64_t highest() const { return m_highest; }
    bool isFree(std::int64_t index) const { return cellAt(index).check == kFreeCheck; }

    // A copy of the cell; a free cell beyond those that are stored.
    Cell cellAt(std::int64_t index) const {
        return index < storedCells() ? storedCell(index) : kFreeCell;
    }

    void prefetch(std::int64_t index) const {
        if (index < storedCells()) __builtin_prefetch(&storedCell(index), 1);
    }

    // Raises the capacity by doubling to at least `size` cells.
    void reserve(std::int64_t size);
    // The first free cell at or after `index`. Raises the capacity to include it.
    std::int64_t firstFreeFrom(std::int64_t index);

    // From here on no cell at or beyond `limit` is used.
    void limitTo(std::int64_t limit) { m_limit = limit; }

    // Takes the cell of a child of the root. False when `code` has no such cell.
    bool takeRoot(std::int32_t code);
    // Takes the cell of a child of `parent`. The cell must be free, as those of findBase are.
    void takeChild(std::int64_t index, std::int64_t parent);

    // Marks a cell where keys end. A leaf has no base; the smallest of their numbers takes its
    // place.
    void markTerminal(std::int64_t index, std::int32_t smallestKey, std::int32_t feature);
    // Sets the base of a cell and keeps the mark of a terminal one.
    void setBase(std::int64_t index, std::int64_t base);

    // The base that puts the child `leading` on the first free cell, from the free hint on, at
    // which all children fit. Negative when there is none below the limit, or when the hint is
    // below `leading`. Moves the hint to the first free cell.
    std::int64_t findBase(std::int32_t leading, const std::vector<std::int32_t>& labels);

    // The same for a node with the one child `label`.
    std::int64_t findBaseOfOne(std::int32_t label);

    // Called when only nodes with one child are left to place.
    void endWideSearches() { m_free.dropCopies(); }

    // Counts one more cell, as long as an image can hold it, and returns the new highest index.
    std::int64_t countOneMore();

private:
    // Storage is in blocks, which never move, so no large piece of memory is needed.
    static constexpr std::int64_t kBlockCells = 4096;

    std::int64_t storedCells() const {
        return static_cast<std::int64_t>(m_blocks.size()) * kBlockCells;
    }
    Cell& storedCell(std::int64_t index) const {
        const auto position = static_cast<std::uint64_t>(index);
        return m_blocks[position / kBlockCells][position % kBlockCells];
    }
    void advanceHint();
    Cell& use(std::int64_t index);

    std::int32_t m_alphabetSize;
    std::int64_t m_capacity;
    std::int64_t m_hint;  // no cell before it is free
    std::int64_t m_highest = 0;
    std::int64_t m_limit;
    std::vector<std::unique_ptr<Cell[]> > m_blocks;
    FreeCells m_free;
    std::vector<std::int64_t> m_offsets;  // scratch of findBase
};

}  // namespace Dictionary

#endif
