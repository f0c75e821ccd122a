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

// What a step is to know beside the walks: the walk that began at character `start` goes from its
// cell to the child with label `codes[start]`.
struct StepGround {
    const CellView& cells;
    const std::int32_t* codes;
    std::int32_t alphabet;
    std::uint32_t mark;
};

// A step takes every walk on, and drops those whose cell has no such child. It appends to `ends`
// the walks whose cell before the step ends a key, in their order, with the ground's mark added to
// their starts; but none whose code is not below the alphabet: that one ends its walk before the
// key is looked at.
struct WalkSteps {
    const char* name;

    // Begins a walk at each of the `count` characters from `codes[-1]` on, if its code is below the
    // alphabet and the number of a cell, and takes their first step, which fills `walks`.
    void (*first)(const StepGround& ground, std::uint32_t count, Walks& walks, Walks& ends);

    // Takes the next step of `walks`.
    void (*next)(const StepGround& ground, Walks& walks, Walks& ends);
};

struct WalkStepsList {
    const WalkSteps* first;
    std::size_t count;

    const WalkSteps* begin() const { return first; }
    const WalkSteps* end() const { return first + count; }
};

// Those that this machine can run, the fastest last. The first runs everywhere, and all give the
// same walks.
WalkStepsList walkSteps();

inline const WalkSteps& fastestWalkSteps() {
    static const WalkSteps& fastest = *(walkSteps().end() - 1);
    return fastest;
}

}  // namespace Dictionary

#endif
