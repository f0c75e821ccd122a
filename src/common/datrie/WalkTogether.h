// Helper, not installed: walks from neighbouring characters.
//
// Each step of a walk waits for the cell that the step before leads to, but neighbouring walks do
// not wait for each other. Where the machine has registers for it, all walks of a group take their
// first step, then their second one, and so on. So many cells are on their way from memory at any
// time.

#ifndef DICTIONARY_WALK_TOGETHER_H
#define DICTIONARY_WALK_TOGETHER_H

#include "ImageFormat.h"
#include "WalkGroup.h"

namespace Dictionary {

// Begins a walk at each character whose code is in the alphabet and is the number of a cell, and
// takes up to kMaxSteps steps with each. A code outside the alphabet ends a walk, and a key right
// before it is not found.
using WalkTogether = void (*)(const CellView& cells, const GroupStart& start, WalkGroup& group);

// The function of the kernel in use. All kernels find the same.
WalkTogether walkTogether();

}  // namespace Dictionary

#endif
