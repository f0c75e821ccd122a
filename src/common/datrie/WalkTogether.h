// Helper, not installed: walks from neighbouring characters.
//
// Each step of a walk waits for the cell that the step before leads to, but neighbouring walks do
// not wait for each other. Where the machine has registers for it, all walks of a group take their
// first step, then their second one, and so on, and many cells are on their way from memory at any
// time.

#ifndef DICTIONARY_WALK_TOGETHER_H
#define DICTIONARY_WALK_TOGETHER_H

#include "ImageFormat.h"
#include "WalkGroup.h"

namespace Dictionary {

// Begins a walk at each character whose code is below the alphabet and the number of a cell, and
// takes up to kMaxSteps steps with all of them. A walk ends at a code that is not below the
// alphabet before the key in front of it is looked at.
using WalkTogether = void (*)(const CellView& cells, const GroupStart& start, WalkGroup& group);

// That of the kernel in use. All of them find the same.
WalkTogether walkTogether();

}  // namespace Dictionary

#endif
