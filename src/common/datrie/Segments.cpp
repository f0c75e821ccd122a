#include "Segments.h"

#include "Walk.h"

namespace Dictionary {

namespace {

// The keys are written down without a branch, since no processor guesses well where they are: what
// is no key is overwritten by the next one.
template <class Text, class MayBegin, class MayEnd>
std::size_t findSegmentsIn(const CellView& cells, const Text& text, std::size_t size,
                           std::size_t& place, Segment* segments, MayBegin mayBegin,
                           MayEnd mayEnd) {
    std::size_t count = 0, from = place;
    while (from < size && count < kSegmentsAtOnce) {
        if (!mayBegin(from)) {
            ++from;
            continue;
        }
        const LongestKey longest = longestFrom(cells, text, from, kNoAlphabet, mayEnd);
        segments[count] = {from, longest.end, longest.cell};
        count += longest.found ? 1 : 0;
        from = longest.end;
    }
    place = from;
    return count;
}

struct Codes {
    const std::int32_t* codes;
    std::int32_t next(std::size_t& place) const { return codes[place++]; }
};

}  // namespace

std::size_t findSegments(const CellView& cells, const EncodedText& text, const std::uint8_t* closed,
                         std::size_t& place, Segment (&segments)[kSegmentsAtOnce]) {
    const Codes codes = {text.codes()};
    if (closed == nullptr && !text.hasPairs()) {
        const auto everywhere = [](std::size_t) { return true; };
        return findSegmentsIn(cells, codes, text.size(), place, segments, everywhere, everywhere);
    }
    const auto isOpen = [&](std::size_t at) { return closed == nullptr || closed[at] == 0; };
    const auto mayBegin = [&](std::size_t at) { return !text.isInsidePair(at) && isOpen(at); };
    return findSegmentsIn(cells, codes, text.size(), place, segments, mayBegin, isOpen);
}

}  // namespace Dictionary
