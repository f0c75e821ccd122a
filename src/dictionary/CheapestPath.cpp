#include "CheapestPath.h"

#include <algorithm>
#include <iterator>

#include "KeyScan.h"
#include "TextSearch.h"
#include "WordBoundary.h"

namespace Dictionary {

namespace {

// A text is cut from its end, window by window, so that only one window at a time is in memory as
// labels. The walks of a window may read on after it, as far as the longest key reaches.
constexpr std::size_t kWindowBytes = 1 << 15;
constexpr std::size_t kMostLabelBytes = 3;

// For how many bytes of a text, from its beginning, the sources of keys are kept.
constexpr std::size_t kSourceBytes = 1 << 15;

// Whether certainly no legal sequence goes across `place`.
bool isBetweenSequences(std::string_view text, std::size_t place) {
    constexpr std::size_t kMostContinuations = 3;
    const auto continues = [&](std::size_t at) {
        return isContinuation(static_cast<std::uint8_t>(text[at]));
    };
    if (!continues(place)) return true;
    for (std::size_t back = 1; back <= std::min(place, kMostContinuations); ++back) {
        if (!continues(place - back)) return false;
    }
    return true;
}

// The first such place from `place` on.
std::size_t nextBetweenSequences(std::string_view text, std::size_t place) {
    while (place < text.size() && !isBetweenSequences(text, place)) ++place;
    return std::min(place, text.size());
}

// How many labels are before byte `place` of the encoded text, where a character begins.
std::size_t labelsBefore(const EncodedText& labels, std::size_t place) {
    std::size_t low = 0;
    for (std::size_t high = labels.size(); low < high;) {
        const std::size_t middle = low + (high - low) / 2;
        const auto start = static_cast<std::size_t>(labels.span(middle, middle + 1, 0).start);
        if (start < place) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return labels.isInsidePair(low) ? low + 1 : low;
}

// What is next to the bytes from `start` up to, not including, `end`.
template <class Text>
InsideWords::Neighbours neighboursOf(const Text& text, std::size_t start, std::size_t end) {
    const WordClass next =
        end == text.size() ? WordClass::kNone : wordClassOf(text.characterAt(end));
    return {Words<Text>(text).followsWord(start), next};
}

}  // namespace

bool CheapestPath::formsDiffer() const {
    const auto& images = m_images.images;
    const auto differs = [&](const WeightedImage& one) {
        return one.isFolded != images.front().isFolded;
    };
    return std::any_of(images.begin(), images.end(), differs);
}

// How far keys reach at most, in bytes.
std::size_t CheapestPath::lookahead() const {
    std::size_t labels = 0;
    for (const WeightedImage& weighted : m_images.images) {
        labels = std::max(labels, weighted.longestKey);
    }
    return kMostLabelBytes * labels;
}

void CheapestPath::cut(std::string_view text) {
    m_text = text;
    m_keys.assign(text.size(), kNoKey);
    m_sources.resize(std::max(m_sources.size(), std::min(text.size(), kSourceBytes)));
    m_longKeys.clear();
    m_scores.clear();
    for (std::size_t end = text.size(), start; end > 0; end = start) {
        start = windowStart(end);
        cutWindow(start, end);
    }
}

// A window is no shorter than the lookahead, so that the lookahead ends in the next window.
std::size_t CheapestPath::windowStart(std::size_t end) const {
    const std::size_t most = std::max(kWindowBytes, 2 * m_lookahead);
    return end <= most ? 0 : nextBetweenSequences(m_text, end - most);
}

void CheapestPath::cutWindow(std::size_t start, std::size_t end) {
    const std::size_t readEnd = nextBetweenSequences(m_text, end + m_lookahead);
    Window window = {SetText(m_images.images, m_text.substr(start, readEnd - start),
                             [](const WeightedImage& weighted) { return weighted.isFolded; }),
                     {}};
    if (m_wholeWords) findInsideWords(window, start, readEnd);
    const EncodedText& labels = window.labels.any();
    const std::size_t own = labelsBefore(labels, end - start);
    m_laterScores.swap(m_scores);
    m_scores.resize(labels.size() + 1);
    // Where the text ends, the score is 0.
    m_laterScores.resize(std::max<std::size_t>(m_laterScores.size(), 1));
    std::copy_n(m_laterScores.begin(), labels.size() + 1 - own,
                m_scores.begin() + static_cast<std::ptrdiff_t>(own));
    for (std::size_t blockEnd = own, first; blockEnd > 0; blockEnd = first) {
        first = (blockEnd - 1) / TextSearch::kBlock * TextSearch::kBlock;
        findKeys(window, first, blockEnd);
        cutBlock(labels, first, blockEnd, start);
    }
}

// Finds the best path from each of the labels from `first` up to, not including, `end`. The window
// begins at byte `start`.
void CheapestPath::cutBlock(const EncodedText& labels, std::size_t first, std::size_t end,
                            std::size_t start) {
    m_left = m_found.size();
    for (std::size_t place = end; place-- > first;) {
        if (m_left > 0 && m_found[m_left - 1].from == place) {
            cutAt(labels, place, start);
        } else if (!labels.isInsidePair(place)) {
            const std::size_t next = place + (labels.isInsidePair(place + 1) ? 2 : 1);
            m_scores[place] = m_images.unknownWeight + m_scores[next];
        }
    }
}

// Chooses among the keys that begin at label `from`, longest first. So of paths that cost the same,
// the one with the longer word stays.
void CheapestPath::cutAt(const EncodedText& labels, std::size_t from, std::size_t start) {
    const FoundKey* chosen = &m_found[--m_left];
    double best = chosen->weight + m_scores[chosen->end];
    for (; m_left > 0 && m_found[m_left - 1].from == from; --m_left) {
        const FoundKey& key = m_found[m_left - 1];
        const double score = key.weight + m_scores[key.end];
        if (score <= best) continue;
        best = score;
        chosen = &key;
    }
    m_scores[from] = best;
    const SPOS span = labels.span(from, chosen->end, kNoFeature);
    note(start + static_cast<std::size_t>(span.start),
         static_cast<std::size_t>(span.end + 1 - span.start), chosen->source);
}

void CheapestPath::note(std::size_t start, std::size_t bytes, Source source) {
    m_keys[start] = static_cast<std::uint8_t>(std::min<std::size_t>(bytes, kLongKey));
    if (bytes >= kLongKey) m_longKeys.push_back({start, bytes});
    if (start < m_sources.size()) m_sources[start] = source;
}

// For a window that has the bytes from `start` up to, not including, `end`.
void CheapestPath::findInsideWords(Window& window, std::size_t start, std::size_t end) const {
    for (const WeightedImage& weighted : m_images.images) {
        InsideWords& inside = window.insideWords[weighted.isFolded];
        if (inside.isFound()) continue;
        inside.find(window.labels.of(weighted.isFolded),
                    weighted.isFolded ? neighboursOf(FoldedText(m_text), start, end)
                                      : neighboursOf(LabelText(m_text), start, end));
    }
}

// Finds the keys that begin at the labels from `first` up to, not including, `end`.
void CheapestPath::findKeys(const Window& window, std::size_t first, std::size_t end) {
    m_found.clear();
    for (std::uint32_t image = 0; image < m_images.images.size(); ++image) {
        findKeysOf(image, window, first, end);
        if (m_found.empty()) {
            m_found.swap(m_ofImage);
        } else if (!m_ofImage.empty()) {
            mergeKeys();
        }
    }
}

// Reads the weights here, not while paths are compared, so that no comparison waits for one.
void CheapestPath::findKeysOf(std::uint32_t image, const Window& window, std::size_t first,
                              std::size_t end) {
    m_ofImage.clear();
    const WeightedImage& weighted = m_images.images[image];
    const EncodedText& labels = window.labels.of(weighted.isFolded);
    TextSearch search(weighted.image.cells(), labels);
    search.closePlaces(window.insideWords[weighted.isFolded].closedPlaces());
    search.forEachKeyIn(
        first, kAlphabet, [&](std::size_t from, std::size_t keyEnd, std::int32_t feature) {
            if (from >= end || labels.isInsidePair(keyEnd)) return;
            m_ofImage.push_back({from, keyEnd, weighted.weights.of(feature), {image, feature}});
        });
}

// Merges the keys of an image with those of the images before it. At the same stretch, its key
// replaces theirs.
void CheapestPath::mergeKeys() {
    m_merged.clear();
    std::set_union(m_ofImage.begin(), m_ofImage.end(), m_found.begin(), m_found.end(),
                   std::back_inserter(m_merged), [](const FoundKey& a, const FoundKey& b) {
                       return a.from != b.from ? a.from < b.from : a.end < b.end;
                   });
    m_found.swap(m_merged);
}

// Whether byte `place` of the text is inside a word. False if keys need not be whole words.
bool CheapestPath::isInsideWord(const WeightedImage& weighted, std::size_t place) const {
    if (!m_wholeWords) return false;
    if (!weighted.isFolded) return Words<LabelText>(LabelText(m_text)).isInside(place);
    return Words<FoldedText>(FoldedText(m_text)).isInside(place);
}

}  // namespace Dictionary
