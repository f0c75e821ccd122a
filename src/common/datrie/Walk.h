// Helper, not installed: single walks through the cells of an image.
//
// They read any text with numbered places: `text.next(place)` returns the code of the character at
// `place` and moves the place after it. Place 0 is where the text begins, and `text.size()` is
// where it ends: the code there is below every alphabet and leads nowhere. No walk may begin
// where `text.isInsidePair(place)`.

#ifndef DICTIONARY_WALK_H
#define DICTIONARY_WALK_H

#include <cstddef>
#include <cstdint>
#include <limits>

#include "ImageFormat.h"

namespace Dictionary {

constexpr std::int64_t kNoAlphabet = std::numeric_limits<std::int64_t>::max();

// Follows the text at `place` from `cell` as far as the trie goes, and calls `found(end, cell)` for
// every cell on the way that ends a key, including the first one. `end` is where the key ends in
// the text.
// Kept: a code at or beyond `alphabet` ends the walk, and a key right before it is not found.
template <class Text, class Found>
void walkOn(const CellView& cells, std::uint32_t cell, const Text& text, std::size_t place,
            std::int64_t alphabet, Found found) {
    for (;;) {
        const std::size_t end = place;
        const std::int32_t code = text.next(place);
        if (code >= alphabet) return;
        if (endsKey(cells.baseOf(cell))) found(end, cell);
        if (!cells.descend(cell, code)) return;
    }
}

// Calls `found(end, feature)` for every key that begins at `place`, shortest first.
template <class Text, class Found>
void walkFrom(const CellView& cells, const Text& text, std::size_t place, std::int64_t alphabet,
              Found found) {
    const std::int32_t code = text.next(place);
    if (!cells.holds(code)) return;
    walkOn(cells, static_cast<std::uint32_t>(code), text, place, alphabet,
           [&](std::size_t end, std::uint32_t cell) { found(end, cells.featureOf(cell)); });
}

// Where keys may begin and end unless the caller says otherwise.
struct AnyPlace {
    bool operator()(std::size_t) const { return true; }
};

struct LongestKey {
    static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

    bool isFound() const { return cell != kNone; }

    std::size_t end;  // after the first character when none was found
    std::uint32_t cell;
};

// Follows the text as walkOn does. If keys for which `mayEnd(end)` holds are on the way, stores the
// longest of them in `longest`. It does so without a branch, which would often be mispredicted.
template <class Text, class MayEnd>
void goOnToLongest(const CellView& cells, std::uint32_t cell, const Text& text, std::size_t place,
                   std::int64_t alphabet, const MayEnd& mayEnd, LongestKey& longest) {
    std::int32_t code;
    do {
        const std::size_t end = place;
        code = text.next(place);
        const bool isLonger = code < alphabet && endsKey(cells.baseOf(cell)) && mayEnd(end);
        longest.cell = isLonger ? cell : longest.cell;
        longest.end = isLonger ? end : longest.end;
    } while (code < alphabet && cells.descend(cell, code));
}

// The longest key that begins at `place`, which must not be the end of the text.
template <class Text, class MayEnd>
LongestKey longestFrom(const CellView& cells, const Text& text, std::size_t place,
                       std::int64_t alphabet, const MayEnd& mayEnd) {
    const std::int32_t first = text.next(place);
    LongestKey longest = {place, LongestKey::kNone};
    if (!cells.holds(first)) return longest;
    goOnToLongest(cells, static_cast<std::uint32_t>(first), text, place, alphabet, mayEnd, longest);
    return longest;
}

// Calls `found(from, end, feature)` for the longest key at the first character that begins one,
// then at the first after that key, and so on. Keys begin and end only where `isOpen(place)`.
// Kept: the codes are not tested against the alphabet.
template <class Text, class IsOpen, class Found>
void segment(const CellView& cells, const Text& text, const IsOpen& isOpen, Found found) {
    for (std::size_t from = 0; from < text.size();) {
        if (text.isInsidePair(from) || !isOpen(from)) {
            ++from;
            continue;
        }
        const LongestKey longest = longestFrom(cells, text, from, kNoAlphabet, isOpen);
        if (longest.isFound()) found(from, longest.end, cells.featureOf(longest.cell));
        from = longest.end;
    }
}

// Calls `found(from, end, feature)` for every key that begins at the first character that is in the
// alphabet, shortest first.
template <class Text, class Found>
void forEachKeyAtFirst(const CellView& cells, const Text& text, std::int64_t alphabet,
                       Found found) {
    for (std::size_t from = 0, next = 0; from < text.size(); from = next) {
        if (text.next(next) >= alphabet) continue;
        return walkFrom(cells, text, from, alphabet,
                        [&](std::size_t end, std::int32_t feature) { found(from, end, feature); });
    }
}

// Calls `found(feature)` if the whole text is a key whose first character is in the alphabet. The
// only branches that depend on what a cell holds are those taken when the text is no key. So the
// processor can begin with the next lookup before one that succeeds is over.
template <class Text, class Found>
void findWholeKey(const CellView& cells, const Text& text, std::int64_t alphabet, Found found) {
    std::size_t place = 0;
    const std::int32_t first = text.next(place);
    if (first >= alphabet || !cells.holds(first)) return;
    auto cell = static_cast<std::uint32_t>(first);
    while (place < text.size()) {
        if (!cells.descend(cell, text.next(place))) return;
    }
    if (endsKey(cells.baseOf(cell))) found(cells.featureOf(cell));
}

}  // namespace Dictionary

#endif
