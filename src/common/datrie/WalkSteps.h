// Helper, not installed: what walks that advance together leave behind, and the keys among it.

#ifndef DICTIONARY_WALK_STEPS_H
#define DICTIONARY_WALK_STEPS_H

#include <cstdint>

#include "WalkGroup.h"

namespace Dictionary {

struct WalkSteps {
    // The cells of the walks after each step, and last of those that are not over.
    alignas(64) std::uint32_t cells[WalkGroup::kPlaces][WalkGroup::kWalks];
    // One byte per walk: bit n says that it passed the end of a key after n steps, the highest bit
    // that it is not over.
    alignas(64) std::uint8_t keys[WalkGroup::kWalks];
};
static_assert(WalkGroup::kPlaces == 8, "a byte of bits per walk");

// Puts the keys and the walks that are not over into the group, in its order.
void listByBits(const WalkSteps& steps, WalkGroup& group);

#ifdef __x86_64__
// The same, quicker, where movesBytesTogether().
[[gnu::target("avx512f,avx512bw,avx512vbmi2,popcnt")]] void listByRegisters(const WalkSteps& steps,
                                                                            WalkGroup& group);
#endif

}  // namespace Dictionary

#endif
