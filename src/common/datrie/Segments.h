// Helper, not installed: the longest keys of a text, one after the other.

#ifndef DICTIONARY_SEGMENTS_H
#define DICTIONARY_SEGMENTS_H

#include <cstddef>
#include <cstdint>

#include "EncodedText.h"
#include "ImageFormat.h"

namespace Dictionary {

// By character numbers, `from` up to but without `end`, and the cell where the key ends.
struct Segment {
    std::size_t from;
    std::size_t end;
    std::uint32_t cell;
};

// Finds the longest key at the first character from `place` on that begins one, then at the first
// after that key, and so on, until the text ends or `segments` is full. Returns how many it found;
// `place` moves after them. Keys neither begin nor end at a place whose entry in `closed` is not 0,
// unless that is null.
// Kept: the codes are not tested against an alphabet.
constexpr std::size_t kSegmentsAtOnce = 64;
std::size_t findSegments(const CellView& cells, const EncodedText& text, const std::uint8_t* closed,
                         std::size_t& place, Segment (&segments)[kSegmentsAtOnce]);

}  // namespace Dictionary

#endif
