// Helper, not installed: one step of many walks at once, where the machine has registers
// that are wide enough for it to pay.

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

    // Puts the one that goes on, or ended with a key, after the others; without a branch, as nobody
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
    // Begins a walk at each of the `count` characters from `codes[-1]` on, if its code is below the
    // alphabet and the number of a cell, and takes their first step, which fills `walks`.
    void (*first)(const StepGround& ground, std::uint32_t count, Walks& walks, Walks& ends);

    // Takes the next step of `walks`.
    void (*next)(const StepGround& ground, Walks& walks, Walks& ends);
};

// Those of the kernel in use; null when it has none. All of them take the same walks.
const WalkSteps* walkSteps();

}  // namespace Dictionary

#endif
