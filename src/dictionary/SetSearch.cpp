#include "SetSearch.h"

#include "WordBoundary.h"

namespace Dictionary {

namespace {

// Whether each place of the text is inside a word; one more for the end.
std::vector<std::uint8_t> insideWordsOf(const EncodedText& text) {
    std::vector<std::uint8_t> inside(text.size() + 1);
    bool followsWord = false;
    for (std::size_t place = 0; place < text.size(); ++place) {
        if (text.isInsidePair(place)) continue;
        const WordClass at = wordClassOf(text.characterAt(place));
        inside[place] = followsWord && at != WordClass::kNone;
        followsWord = at == WordClass::kLetter || (at == WordClass::kMark && followsWord);
    }
    return inside;
}

bool comesBefore(const SetKey& a, const SetKey& b) {
    return a.from != b.from ? a.from < b.from : a.key.end < b.key.end;
}

}  // namespace

SetSearch::SetSearch(const Images& images, const SetRules& rules, const SetText& text)
    : m_images(images), m_rules(rules), m_text(text) {
    if (!rules.wholeWords) return;
    for (const auto& image : images) {
        std::vector<std::uint8_t>& inside = m_insideWords[image->isFolded()];
        if (inside.empty()) inside = insideWordsOf(text.of(image->isFolded()));
    }
}

TextSearch SetSearch::searchOf(std::uint32_t image) const {
    const bool isFolded = m_images[image]->isFolded();
    TextSearch search(m_images[image]->view().cells(), m_text.of(isFolded));
    if (m_rules.wholeWords) search.closePlaces(m_insideWords[isFolded].data());
    return search;
}

// Puts the keys of an image that begin in the block from `first` on among those of images before
// it.
void SetSearch::mergeKeysOf(std::uint32_t image, std::size_t first, Keys& keys, Keys& room) const {
    Keys& found = image == 0 ? keys : room;
    found.clear();
    searchOf(image).forEachKeyIn(first, kAlphabet,
                                 [&](std::size_t from, std::size_t end, std::int32_t feature) {
                                     found.push_back({from, {end, image, feature}});
                                 });
    if (image == 0 || room.empty()) return;
    const auto middle = static_cast<std::ptrdiff_t>(keys.size());
    keys.insert(keys.end(), room.begin(), room.end());
    std::inplace_merge(keys.begin(), keys.begin() + middle, keys.end(), comesBefore);
}

}  // namespace Dictionary
