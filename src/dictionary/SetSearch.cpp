#include "SetSearch.h"

namespace Dictionary {

TextSearch SetSearch::Part::search() const {
    TextSearch search(cells, text);
    search.closePlaces(closed);
    return search;
}

SetSearch::SetSearch(const Images& images, const SetRules& rules, const SetText& text)
    : m_rules(rules), m_text(text) {
    m_parts.reserve(images.size());
    for (const auto& image : images) {
        const EncodedText& read = text.of(image->isFolded());
        InsideWords& inside = m_insideWords[image->isFolded()];
        if (rules.wholeWords && !inside.isFound()) inside.find(read, {});
        m_parts.push_back({image->view().cells(), read, inside.closedPlaces()});
    }
}

const SetSearch::LaterKeys::Keys& SetSearch::LaterKeys::in(std::size_t first) {
    m_keys.clear();
    for (std::uint32_t image = 1; image < m_search.m_parts.size(); ++image) {
        list(image, first);
        if (m_keys.empty()) {
            m_keys.swap(m_ofImage);
        } else if (!m_ofImage.empty()) {
            merge();
        }
    }
    return m_keys;
}

// Lists the keys of an image in the block of characters from `first` on.
void SetSearch::LaterKeys::list(std::uint32_t image, std::size_t first) {
    m_ofImage.clear();
    const TextSearch search = m_search.m_parts[image].search();
    const auto take = [&](std::size_t from, std::size_t end, std::int32_t feature) {
        m_ofImage.push_back({from, {end, image, feature}});
    };
    if (m_counts == Counts::kAll) {
        searchBlock<Counts::kAll>(search, first, take);
    } else {
        searchBlock<Counts::kLongest>(search, first, take);
    }
}

// Merges the keys of an image with those of the images before it.
void SetSearch::LaterKeys::merge() {
    const bool longestAlone = m_counts == Counts::kLongest;
    m_merged.clear();
    auto key = m_keys.begin();
    const auto end = m_keys.end();
    for (const SetKey& other : m_ofImage) {
        for (; key != end && comesBefore(*key, other.from, other.key.end); ++key) {
            if (!longestAlone || key->from < other.from) m_merged.push_back(*key);
        }
        const bool isAtStart = key != end && key->from == other.from;
        if (longestAlone && isAtStart && key->key.end > other.key.end) continue;
        for (; key != end && key->from == other.from && key->key.end == other.key.end; ++key) {
            if (m_search.m_rules.everyImage) m_merged.push_back(*key);
        }
        m_merged.push_back(other);
    }
    m_merged.insert(m_merged.end(), key, end);
    m_keys.swap(m_merged);
}

// Whether a key begins at `from`. If so, `key` becomes the longest one.
bool SetSearch::longestAt(std::size_t from, KeyAt& key) const {
    bool isFound = false;
    if (m_text.any().isInsidePair(from)) return isFound;
    for (std::uint32_t image = 0; image < m_parts.size(); ++image) {
        const Part& part = m_parts[image];
        if (part.isClosed(from)) continue;
        walkFrom(part.cells, part.text, from, kAlphabet,
                 [&](std::size_t end, std::int32_t feature) {
                     if (part.isClosed(end) || (isFound && end < key.end)) return;
                     key = {end, image, feature};
                     isFound = true;
                 });
    }
    return isFound;
}

}  // namespace Dictionary
