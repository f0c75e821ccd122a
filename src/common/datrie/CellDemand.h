// Helper, not installed: a lower bound on the cells that a trie needs, known before it is placed.

#ifndef DICTIONARY_CELL_DEMAND_H
#define DICTIONARY_CELL_DEMAND_H

#include <cstdint>

#include "KeyTrie.h"

namespace Dictionary {

// The nodes below the root's children span at least this many cells, wherever they are placed. Does
// not look for bounds below `enough`.
std::int64_t leastCells(const KeyTrie& trie, std::int64_t enough);

}  // namespace Dictionary

#endif
