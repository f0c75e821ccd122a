// Helper, not installed: the steps of walks that advance together, and the keys that they passed.

#ifndef DICTIONARY_WALK_STEPS_H
#define DICTIONARY_WALK_STEPS_H

#include <cstdint>

#include "WalkGroup.h"

namespace Dictionary {

struct WalkSteps {
    // The cells of the walks after 0, 1, 2... steps. The last row has those of the walks that are
    // not over.
    alignas(64) std::uint32_t cells[WalkGroup::kPlaces][WalkGroup::kWalks];
    // One byte per walk. Bit n says that the walk passed the end of a key after n steps; the
    // highest bit says that it is not over.
    alignas(64) std::uint8_t keys[WalkGroup::kWalks];
};
static_assert(WalkGroup::kPlaces == 8, "a byte of bits per walk");

// Puts the keys, and the walks that are not over, into the group in its order.
void listByBits(const WalkSteps& steps, WalkGroup& group);

#ifdef __x86_64__
// The same, but faster. Only where movesBytesTogether().
[[gnu::target("avx512f,avx512bw,avx512vbmi2,popcnt")]] void listByRegisters(const WalkSteps& steps,
                                                                            WalkGroup& group);
#endif

}  // namespace Dictionary

#endif
