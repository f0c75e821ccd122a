// Helper, not installed: one step of many walks at once, for every kind of machine.

#ifndef DICTIONARY_WALK_STEP_H
#define DICTIONARY_WALK_STEP_H

#include <cstddef>
#include <cstdint>

#include "ImageFormat.h"

namespace Dictionary {

// Behind what a step writes it may write as many values more.
constexpr std::uint32_t kWalkStepSlack = 16;

// Walks by the characters at which they began and the cells that they have reached.
struct Walks {
    std::uint32_t count;
    std::uint32_t* starts;
    std::uint32_t* cells;

    // Puts the one that goes on, or ended with a key, behind the others; without a jump, as nobody
    // could foretell it.
    void addIf(bool condition, std::uint32_t start, std::uint32_t cell) {
        starts[count] = start;
        cells[count] = cell;
        count += condition ? 1 : 0;
    }
};

// Takes every walk from its cell to the child with label `codes[start]`, and drops those that have
// none. Appends to `ends` the walks whose cell before the step ends a key, in their order, with
// `mark` added to their starts; but none whose code is not below `alphabet`: that one ends its walk
// before the key is looked at.
using WalkStep = void (*)(const CellView& cells, const std::int32_t* codes, std::int32_t alphabet,
                          std::uint32_t mark, Walks& walks, Walks& ends);

struct WalkStepKernel {
    const char* name;
    WalkStep step;
};

struct WalkStepKernels {
    const WalkStepKernel* first;
    std::size_t count;

    const WalkStepKernel* begin() const { return first; }
    const WalkStepKernel* end() const { return first + count; }
};

// Those that this machine can run, the fastest last. The first runs on every x86-64, and all give
// the same walks.
WalkStepKernels walkStepKernels();

inline WalkStep fastestWalkStep() {
    static const WalkStep fastest = (walkStepKernels().end() - 1)->step;
    return fastest;
}

}  // namespace Dictionary

#endif
