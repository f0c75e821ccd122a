// Helper, not installed: walks from neighbouring characters.
//
// Each step of a walk waits for the cell that the step before leads to, but neighbouring walks do
// not wait for each other. Where the machine has registers for it, all walks of a group take their
// first step, then their second one, and so on, and many cells are on their way from memory at any
// time.

#ifndef DICTIONARY_WALK_GROUP_H
#define DICTIONARY_WALK_GROUP_H

#include <cstddef>
#include <cstdint>

#include "EncodedText.h"
#include "ImageFormat.h"

namespace Dictionary {

// Where a group begins in its text.
struct GroupStart {
    const std::int32_t* codes;
    const std::uint8_t* closed;  // null, or not 0 at each place where no key begins or ends
    std::int32_t alphabet;
    std::uint32_t characters;  // of the text from there on, or kWalks of them

    bool isOpen(std::size_t place) const { return closed == nullptr || closed[place] == 0; }
};

// What walks from neighbouring characters found.
struct WalkGroup {
    static constexpr std::uint32_t kWalks = 64;
    static constexpr std::uint32_t kMaxSteps = 7;
    // So many places of the text may be read.
    static constexpr std::uint32_t kReach = kWalks + kMaxSteps;
    static_assert(kReach <= EncodedText::kPadding, "a group may begin at the last character");

    // A key in the text, or a walk that is not over, in one word of eight bytes: it is written once
    // and read once for each key.
    struct Key {
        std::uint32_t place;  // the first character's number in the group, and steps in low bits
        std::uint32_t cell;   // where the key ends, or that of the walk

        std::uint32_t from() const { return place / kPlaces; }
        bool isLeft() const { return steps() == kMaxSteps; }
        // Of a key, after so many steps.
        std::uint32_t steps() const { return place % kPlaces; }
    };
    static constexpr std::uint32_t kPlaces = kMaxSteps + 1;

    // By first character, then by steps; a walk that is not over follows the keys that it passed.
    std::uint32_t count = 0;
    Key keys[kWalks * kPlaces + 1];  // one more may be written
    std::uint32_t stepsOfLeft;       // how many the walks that are not over have taken
};

// Begins a walk at each character whose code is below the alphabet and the number of a cell, and
// takes steps with all of them until few are left. A walk ends at a code that is not below the
// alphabet before the key in front of it is looked at.
using WalkTogether = void (*)(const CellView& cells, const GroupStart& start, WalkGroup& group);

// That of the kernel in use. All of them find the same keys, if not by as many steps.
WalkTogether walkTogether();

}  // namespace Dictionary

#endif
