// Helper, not installed: searches that go through a text key by key and can stop at each.
//
// Texts are those of Walk.h. `found(from, end, feature)` returns false to stop; the searches return
// false when it did.

#ifndef DICTIONARY_KEY_SCAN_H
#define DICTIONARY_KEY_SCAN_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ImageFormat.h"
#include "Walk.h"

namespace Dictionary {

// A key that begins at some place.
struct KeyAt {
    std::size_t end;
    std::int32_t feature;
};

// Moves `place` to where the next character begins.
template <class Text>
void passCharacter(const Text& text, std::size_t& place) {
    do text.next(place);
    while (text.isInsidePair(place));
}

// Whether a walk of classic texts may begin at `place`; the others have no codes beyond.
template <class Text>
bool mayBeginAt(const Text& text, std::size_t place, std::int32_t alphabet) {
    return text.next(place) < alphabet;
}

// Every key at `place`, shortest first. `keys` is room that is used again and again.
template <class Text, class Found>
bool scanKeysAt(const CellView& cells, const Text& text, std::size_t place, std::int32_t alphabet,
                std::vector<KeyAt>& keys, const Found& found) {
    keys.clear();
    walkFrom(cells, text, place, alphabet, [&](std::size_t end, std::int32_t feature) {
        keys.push_back({end, feature});
    });
    for (const KeyAt& key : keys) {
        if (!found(place, key.end, key.feature)) return false;
    }
    return true;
}

// Every key, by start, shortest first.
template <class Text, class Found>
bool scanAllKeys(const CellView& cells, const Text& text, std::int32_t alphabet,
                 const Found& found) {
    std::vector<KeyAt> keys;
    for (std::size_t from = 0; from < text.size(); passCharacter(text, from)) {
        if (!mayBeginAt(text, from, alphabet)) continue;
        if (!scanKeysAt(cells, text, from, alphabet, keys, found)) return false;
    }
    return true;
}

// The longest key at every place.
template <class Text, class Found>
bool scanLongestKeys(const CellView& cells, const Text& text, std::int32_t alphabet,
                     const Found& found) {
    for (std::size_t from = 0; from < text.size(); passCharacter(text, from)) {
        if (!mayBeginAt(text, from, alphabet)) continue;
        const LongestKey longest = longestFrom(cells, text, from, alphabet);
        if (longest.found && !found(from, longest.end, longest.feature)) return false;
    }
    return true;
}

// The longest key at the first place that has one, then the same after it, and so on.
template <class Text, class Found>
bool scanSegments(const CellView& cells, const Text& text, std::int32_t alphabet,
                  const Found& found) {
    for (std::size_t from = 0; from < text.size();) {
        const LongestKey longest = longestFrom(cells, text, from, alphabet);
        if (longest.found && !found(from, longest.end, longest.feature)) return false;
        if (longest.found) {
            from = longest.end;
        } else {
            passCharacter(text, from);
        }
    }
    return true;
}

// Every key that the text begins with, shortest first.
template <class Text, class Found>
bool scanPrefixes(const CellView& cells, const Text& text, std::int32_t alphabet,
                  const Found& found) {
    std::vector<KeyAt> keys;
    return text.size() == 0 || scanKeysAt(cells, text, 0, alphabet, keys, found);
}

}  // namespace Dictionary

#endif
