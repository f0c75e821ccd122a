#include "SetKeys.h"

#include <algorithm>
#include <iterator>

namespace Dictionary {

// Image by image, and shortest first in each.
template <class Found>
void SetKeys::forEachKeyAt(std::size_t place, const Found& found) const {
    for (std::uint32_t image = 0; image < m_images.size(); ++image) {
        if (m_images[image]->isFolded()) {
            walkImage(image, m_folded, place, found);
        } else {
            walkImage(image, m_plain, place, found);
        }
    }
}

template <class Text, class Found>
void SetKeys::walkImage(std::uint32_t image, const Text& text, std::size_t place,
                        const Found& found) const {
    const Words<Text> words(text);
    if (m_rules.wholeWords && words.isInside(place)) return;
    walkFrom(m_images[image]->view().cells(), text, place, kNoAlphabet,
             [&](std::size_t end, std::int32_t feature) {
                 if (m_rules.wholeWords && words.isInside(end)) return;
                 found(KeyAt{end, image, feature});
             });
}

const std::vector<KeyAt>& SetKeys::allAt(std::size_t place) {
    m_keys.clear();
    forEachKeyAt(place, [&](const KeyAt& key) { add(key); });
    return m_keys;
}

// Of keys at the same stretch, the one added last comes last, or replaces the other.
void SetKeys::add(const KeyAt& key) {
    const auto after =
        std::upper_bound(m_keys.begin(), m_keys.end(), key,
                         [](const KeyAt& a, const KeyAt& b) { return a.end < b.end; });
    const bool repeats = after != m_keys.begin() && std::prev(after)->end == key.end;
    if (repeats && !m_rules.everyImage) {
        *std::prev(after) = key;
    } else {
        m_keys.insert(after, key);
    }
}

bool SetKeys::longestAt(std::size_t place, KeyAt& key) const {
    bool isFound = false;
    forEachKeyAt(place, [&](const KeyAt& other) {
        if (isFound && other.end < key.end) return;
        key = other;
        isFound = true;
    });
    return isFound;
}

}  // namespace Dictionary
