// Helper, not installed: where a group of walks from neighbouring characters begins, and what it
// finds.

#ifndef DICTIONARY_WALK_GROUP_H
#define DICTIONARY_WALK_GROUP_H

#include <cstddef>
#include <cstdint>

#include "EncodedText.h"

namespace Dictionary {

// Where a group begins in its text.
struct GroupStart {
    const std::int32_t* codes;
    const std::uint8_t* closed;  // null, or not 0 at each place where no key begins or ends
    std::int32_t alphabet;
    std::uint32_t characters;  // left in the text from there on, at most kWalks

    bool isOpen(std::size_t place) const { return closed == nullptr || closed[place] == 0; }
};

// What walks from neighbouring characters found.
struct WalkGroup {
    static constexpr std::uint32_t kWalks = 64;
    static constexpr std::uint32_t kMaxSteps = 7;
    // Up to this many places of the text may be read.
    static constexpr std::uint32_t kReach = kWalks + kMaxSteps;
    static_assert(kReach <= EncodedText::kPadding, "a group may begin at the last character");

    // A key in the text, or a walk that is not over. It is one word of eight bytes, so that each
    // key takes one write and one read.
    struct Key {
        std::uint32_t place;  // the first character's number in the group; steps in the low bits
        std::uint32_t cell;   // where the key ends, or where the walk is

        std::uint32_t from() const { return place / kPlaces; }
        bool isLeft() const { return steps() == kMaxSteps; }
        // For a key, the number of steps to its end.
        std::uint32_t steps() const { return place % kPlaces; }
    };
    static constexpr std::uint32_t kPlaces = kMaxSteps + 1;

    // By first character, then by steps; a walk that is not over after kMaxSteps follows the keys
    // that it passed.
    std::uint32_t count = 0;
    Key keys[kWalks * kPlaces + 1];  // one more may be written
};

}  // namespace Dictionary

#endif
