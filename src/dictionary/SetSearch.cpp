#include "SetSearch.h"

#include <algorithm>
#include <iterator>

namespace Dictionary {

TextSearch SetSearch::Part::search() const {
    TextSearch search(cells, *text);
    search.closePlaces(closed);
    return search;
}

SetSearch::SetSearch(const Images& images, const SetRules& rules, const SetText& text)
    : m_rules(rules), m_text(text), m_first(partOf(*images.front())) {
    std::transform(images.begin() + 1, images.end(), std::back_inserter(m_others),
                   [&](const auto& image) { return partOf(*image); });
}

SetSearch::Part SetSearch::partOf(const OpenImage& image) {
    const EncodedText& text = m_text.of(image.isFolded());
    InsideWords& inside = m_insideWords[image.isFolded()];
    if (m_rules.wholeWords && !inside.isFound()) inside.find(text, {});
    return {image.view().cells(), &text, inside.closedPlaces()};
}

void SetSearch::LaterKeys::fillBlock() {
    m_keys.clear();
    m_next = 0;
    for (std::uint32_t image = 1; image < m_search.parts(); ++image) {
        list(image);
        if (m_keys.empty()) {
            m_keys.swap(m_ofImage);
        } else if (!m_ofImage.empty()) {
            merge();
        }
    }
    m_blockEnd += TextSearch::kBlock;
    setStart();
}

// Lists the keys of an image in the block, all of them or the longest alone.
void SetSearch::LaterKeys::list(std::uint32_t image) {
    m_ofImage.clear();
    m_search.part(image).search().forEachKeyIn(
        m_blockEnd, kAlphabet, [&](std::size_t from, std::size_t end, std::int32_t feature) {
            const bool isLonger =
                m_longestAlone && !m_ofImage.empty() && m_ofImage.back().from == from;
            if (isLonger) m_ofImage.pop_back();
            m_ofImage.push_back({from, {end, image, feature}});
        });
}

// Puts the keys of an image among those of the images before it, by the rules of forEachMergedKey.
void SetSearch::LaterKeys::merge() {
    m_merged.clear();
    auto key = m_keys.begin();
    const auto end = m_keys.end();
    for (const SetKey& other : m_ofImage) {
        for (; key != end && comesBefore(*key, other.from, other.key.end); ++key) {
            if (!m_longestAlone || key->from < other.from) m_merged.push_back(*key);
        }
        const bool isAtStart = key != end && key->from == other.from;
        if (m_longestAlone && isAtStart && key->key.end > other.key.end) continue;
        for (; key != end && key->from == other.from && key->key.end == other.key.end; ++key) {
            if (m_search.m_rules.everyImage) m_merged.push_back(*key);
        }
        m_merged.push_back(other);
    }
    m_merged.insert(m_merged.end(), key, end);
    m_keys.swap(m_merged);
}

// Whether a key begins at `from`; `key` becomes the longest.
bool SetSearch::longestAt(std::size_t from, KeyAt& key) const {
    bool isFound = false;
    if (m_text.any().isInsidePair(from)) return isFound;
    for (std::uint32_t image = 0; image < parts(); ++image) {
        const Part& searched = part(image);
        if (searched.isClosed(from)) continue;
        walkFrom(searched.cells, *searched.text, from, kAlphabet,
                 [&](std::size_t end, std::int32_t feature) {
                     if (searched.isClosed(end) || (isFound && end < key.end)) return;
                     key = {end, image, feature};
                     isFound = true;
                 });
    }
    return isFound;
}

}  // namespace Dictionary
