// Helper, not installed: the keys at each place of a text, in several images, in folded ones, and
// for whole words.

#ifndef DICTIONARY_SET_KEYS_H
#define DICTIONARY_SET_KEYS_H

#include <cstddef>
#include <string_view>
#include <vector>

#include "Handle.h"
#include "KeyScan.h"
#include "LabelText.h"
#include "Walk.h"
#include "WordBoundary.h"

namespace Dictionary {

// Which keys of a set of images are found.
struct SetRules {
    bool wholeWords;
    bool everyImage;  // at the same stretch, the keys of all images; else only that of the last
};

// For the searches of KeyScan.h.
class SetKeys {
public:
    SetKeys(const Images& images, const SetRules& rules, std::string_view text)
        : m_images(images), m_rules(rules), m_plain(text), m_folded(text) {}

    // Folded or not, the text has the same places.
    const LabelText& text() const { return m_plain; }

    std::size_t size() const { return m_plain.size(); }
    void pass(std::size_t& place) const { passCharacter(m_plain, place); }

    // All keys at `place`, shortest first, then by image, valid until the next call.
    const std::vector<KeyAt>& allAt(std::size_t place);

    // Whether a key begins at `place`. If so, `key` becomes the longest one.
    bool longestAt(std::size_t place, KeyAt& key) const;

    // Calls `found(key)` for the longest key at `place`; with everyImage, for that of each image
    // that has it. Returns false if `found` did.
    template <class Found>
    bool visitLongestAt(std::size_t place, const Found& found);

private:
    template <class Found>
    void forEachKeyAt(std::size_t place, const Found& found) const;
    template <class Text, class Found>
    void walkImage(std::uint32_t image, const Text& text, std::size_t place,
                   const Found& found) const;
    void add(const KeyAt& key);

    const Images& m_images;
    const SetRules m_rules;
    const LabelText m_plain;
    const FoldedText m_folded;
    std::vector<KeyAt> m_keys;
};

template <class Found>
bool SetKeys::visitLongestAt(std::size_t place, const Found& found) {
    KeyAt key;
    if (!m_rules.everyImage) return !longestAt(place, key) || found(key);
    const std::vector<KeyAt>& keys = allAt(place);
    for (const KeyAt& one : keys) {
        if (one.end == keys.back().end && !found(one)) return false;
    }
    return true;
}

}  // namespace Dictionary

#endif
