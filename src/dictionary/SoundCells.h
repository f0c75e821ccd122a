// Helper, not installed: skips the cells of an image that are certainly right, many at a time if
// the machine has registers for it.

#ifndef DICTIONARY_SOUND_CELLS_H
#define DICTIONARY_SOUND_CELLS_H

#include <cstdint>

#include "ImageFormat.h"

namespace Dictionary {

// What cells may hold.
struct CellRules {
    CellView cells;
    std::uint32_t alphabetSize;
    const std::uint64_t* references;  // a bit for each feature, counted from kNoFeature
    std::uint32_t lastReference;      // the number of the last bit
};

// How many cells are checked together.
constexpr std::int32_t kSoundGroup = 16;

// Skips groups of cells that are right. Begins at `index`, which is not a first character's cell.
// Returns where the first group begins that needs a closer look: one of its cells may be wrong, may
// have a surrogate as its label, or may be the lowest of a cycle of parents; or the array ends in
// the group.
using PassSoundCells = std::int32_t (*)(const CellRules& rules, std::int32_t index);

// The function for the kernel in use.
PassSoundCells passSoundCells();

}  // namespace Dictionary

#endif
