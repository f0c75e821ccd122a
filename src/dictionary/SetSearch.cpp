#include "SetSearch.h"

#include "WordBoundary.h"

namespace Dictionary {

namespace {

// Whether each place of the text is inside a word, that at the end included; empty where none is.
std::vector<std::uint8_t> insideWordsOf(const EncodedText& text) {
    std::vector<std::uint8_t> inside(text.size() + 1);
    bool followsWord = false, isAnyInside = false;
    for (std::size_t place = 0; place < text.size(); ++place) {
        if (text.isInsidePair(place)) continue;
        const WordClass at = wordClassOf(text.characterAt(place));
        const bool isInside = followsWord && at != WordClass::kNone;
        inside[place] = isInside;
        isAnyInside |= isInside;
        followsWord = at == WordClass::kLetter || (at == WordClass::kMark && followsWord);
    }
    if (!isAnyInside) inside.clear();
    return inside;
}

bool comesBefore(const SetKey& a, const SetKey& b) {
    return a.from != b.from ? a.from < b.from : a.key.end < b.key.end;
}

}  // namespace

TextSearch SetSearch::Part::search() const {
    TextSearch search(cells, *text);
    if (closed != nullptr) search.closePlaces(closed);
    return search;
}

SetSearch::SetSearch(const Images& images, const SetRules& rules, const SetText& text)
    : m_rules(rules), m_text(text) {
    bool isKnown[2] = {};
    for (const auto& image : images) {
        const bool isFolded = image->isFolded();
        std::vector<std::uint8_t>& inside = m_insideWords[isFolded];
        if (rules.wholeWords && !isKnown[isFolded]) inside = insideWordsOf(text.of(isFolded));
        isKnown[isFolded] = true;
        m_parts.push_back(
            {image->view().cells(), &text.of(isFolded), inside.empty() ? nullptr : inside.data()});
    }
}

// The keys that begin in the block from `first` on, all of them or the longest alone.
void SetSearch::listKeys(std::uint32_t image, std::size_t first, bool longestAlone,
                         Keys& keys) const {
    keys.clear();
    m_parts[image].search().forEachKeyIn(
        first, kAlphabet, [&](std::size_t from, std::size_t end, std::int32_t feature) {
            const bool isLonger = longestAlone && !keys.empty() && keys.back().from == from;
            if (isLonger) keys.pop_back();
            keys.push_back({from, {end, image, feature}});
        });
}

// Puts the keys of an image among those of the images before it. Of keys at the same stretch that
// of the image counts, or each; where the longest count alone, both have one length at each start.
void SetSearch::mergeKeys(const Keys& before, const Keys& image, bool longestAlone,
                          Keys& merged) const {
    merged.clear();
    auto key = before.begin();
    for (const SetKey& other : image) {
        for (; key != before.end() && comesBefore(*key, other); ++key) {
            const bool isOutdone = longestAlone && key->from == other.from;
            if (!isOutdone) merged.push_back(*key);
        }
        const bool isLonger =
            key != before.end() && key->from == other.from && key->key.end > other.key.end;
        if (longestAlone && isLonger) continue;
        for (; key != before.end() && !comesBefore(other, *key); ++key) {
            if (m_rules.everyImage) merged.push_back(*key);
        }
        merged.push_back(other);
    }
    merged.insert(merged.end(), key, before.end());
}

// Whether a key begins at `from`; `key` becomes the longest.
bool SetSearch::longestAt(std::size_t from, KeyAt& key) const {
    bool isFound = false;
    if (m_text.any().isInsidePair(from)) return isFound;
    for (std::uint32_t image = 0; image < m_parts.size(); ++image) {
        const Part& part = m_parts[image];
        if (part.isClosed(from)) continue;
        walkFrom(part.cells, *part.text, from, kAlphabet,
                 [&](std::size_t end, std::int32_t feature) {
                     if (part.isClosed(end) || (isFound && end < key.end)) return;
                     key = {end, image, feature};
                     isFound = true;
                 });
    }
    return isFound;
}

}  // namespace Dictionary
