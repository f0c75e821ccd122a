// Helper, not installed: cuts texts into the pieces of a segmentation.

#ifndef DICTIONARY_PIECE_FIND_H
#define DICTIONARY_PIECE_FIND_H

#include "TextFind.h"

namespace Dictionary {

// Hands out the pieces of the longest-match segmentation, or of the cheapest one, until the taker
// returns false. Returns false if it did.
bool visitSegments(const TextFind& find, const MatchTaker& taker);
bool visitCheapest(const TextFind& find, const MatchTaker& taker);

}  // namespace Dictionary

#endif
