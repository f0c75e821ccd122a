// Helper, not installed: searches that go through a text key by key and can stop at each.
//
// They take any class of keys that is like ImageKeys. `found(from, key)` returns false to stop the
// search, which then returns false, too.

#ifndef DICTIONARY_KEY_SCAN_H
#define DICTIONARY_KEY_SCAN_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ImageFormat.h"
#include "Walk.h"

namespace Dictionary {

// The codes of the characters in keys are below this.
constexpr std::int32_t kAlphabet = 0x10000;

// A key that begins at some place.
struct KeyAt {
    std::size_t end;
    std::uint32_t image;  // its number
    std::int32_t feature;
};

// Moves `place` to where the next character begins.
template <class Text>
void passCharacter(const Text& text, std::size_t& place) {
    do text.next(place);
    while (text.isInsidePair(place));
}

// The keys of image number 0 in a text that Walk.h can read.
template <class Text>
class ImageKeys {
public:
    ImageKeys(const CellView& cells, const Text& text, std::int32_t alphabet)
        : m_cells(cells), m_text(text), m_alphabet(alphabet) {}

    std::size_t size() const { return m_text.size(); }
    void pass(std::size_t& place) const { passCharacter(m_text, place); }

    // All keys at `place`, shortest first, valid until the next call.
    const std::vector<KeyAt>& allAt(std::size_t place) {
        m_keys.clear();
        if (!mayBeginAt(place)) return m_keys;
        walkFrom(m_cells, m_text, place, m_alphabet, [&](std::size_t end, std::int32_t feature) {
            m_keys.push_back({end, 0, feature});
        });
        return m_keys;
    }

    // Whether a key begins at `place`. If so, `key` becomes the longest one.
    bool longestAt(std::size_t place, KeyAt& key) const {
        if (!mayBeginAt(place)) return false;
        const LongestKey longest = longestFrom(m_cells, m_text, place, m_alphabet, AnyPlace());
        if (longest.isFound()) key = {longest.end, 0, m_cells.featureOf(longest.cell)};
        return longest.isFound();
    }

    // Calls `found(key)` for the longest key at `place`. Returns false if `found` did.
    template <class Found>
    bool visitLongestAt(std::size_t place, const Found& found) const {
        KeyAt key;
        return !longestAt(place, key) || found(key);
    }

private:
    // Classic texts have codes beyond the alphabet.
    bool mayBeginAt(std::size_t place) const { return m_text.next(place) < m_alphabet; }

    const CellView& m_cells;
    const Text& m_text;
    const std::int32_t m_alphabet;
    std::vector<KeyAt> m_keys;
};

template <class Keys, class Found>
bool scanKeysAt(Keys& keys, std::size_t place, const Found& found) {
    for (const KeyAt& key : keys.allAt(place)) {
        if (!found(place, key)) return false;
    }
    return true;
}

// Every key, by start, shortest first.
template <class Keys, class Found>
bool scanAllKeys(Keys& keys, const Found& found) {
    for (std::size_t from = 0; from < keys.size(); keys.pass(from)) {
        if (!scanKeysAt(keys, from, found)) return false;
    }
    return true;
}

// The longest key at every place.
template <class Keys, class Found>
bool scanLongestKeys(Keys& keys, const Found& found) {
    for (std::size_t from = 0; from < keys.size(); keys.pass(from)) {
        const auto foundHere = [&](const KeyAt& key) { return found(from, key); };
        if (!keys.visitLongestAt(from, foundHere)) return false;
    }
    return true;
}

// The longest key at the first place that has one, then the same after that key, and so on.
template <class Keys, class Found>
bool scanSegments(Keys& keys, const Found& found) {
    for (std::size_t from = 0; from < keys.size();) {
        KeyAt key;
        if (!keys.longestAt(from, key)) {
            keys.pass(from);
            continue;
        }
        if (!found(from, key)) return false;
        from = key.end;
    }
    return true;
}

// Every key that the text begins with, shortest first.
template <class Keys, class Found>
bool scanPrefixes(Keys& keys, const Found& found) {
    return keys.size() == 0 || scanKeysAt(keys, 0, found);
}

}  // namespace Dictionary

#endif
