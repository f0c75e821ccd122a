#include "CheapestPath.h"

#include <algorithm>
#include <limits>

#include "WordBoundary.h"

namespace Dictionary {

namespace {

// A text is cut from its end, window by window, so that no more than a window is in memory as
// labels. The walks of a window may read on for some bytes after it.
constexpr std::size_t kWindowBytes = 1 << 15;
constexpr std::size_t kLookaheadBytes = 1 << 11;

// Whether surely no legal sequence goes on across `place`.
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

// Calls `found(end, cell)` for every key that begins at label `place`, shortest first. Returns
// whether it came to no end because the text did.
template <class Found>
bool walkKeys(const CellView& cells, const EncodedText& text, std::size_t place, Found found) {
    const std::int32_t first = text.next(place);
    if (!cells.holds(first)) return false;
    auto cell = static_cast<std::uint32_t>(first);
    do {
        if (endsKey(cells.baseOf(cell))) found(place, cell);
    } while (cells.descend(cell, text.next(place)));
    return place > text.size();
}

// How many labels are before byte `place` of what was encoded, where a character begins.
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

// The byte of what was encoded where label `place`, or its end, is.
std::size_t byteOf(const EncodedText& labels, std::size_t place) {
    if (place == 0) return 0;
    return static_cast<std::size_t>(labels.span(place - 1, place, kNoFeature).end) + 1;
}

}  // namespace

void CheapestPath::cut(std::string_view text) {
    m_text = text;
    m_keys.assign(text.size(), kNoKey);
    m_lookahead = kLookaheadBytes;
    while (!cutInWindows()) m_lookahead *= 2;
}

// Returns false when a key may be longer than the lookahead.
bool CheapestPath::cutInWindows() {
    m_longKeys.clear();
    m_scores.clear();
    for (std::size_t end = m_text.size(); end > 0;) {
        const std::size_t start = windowStart(end);
        if (!cutWindow(start, end)) return false;
        end = start;
    }
    return true;
}

// A window is no shorter than the lookahead, so that this ends in the window after it.
std::size_t CheapestPath::windowStart(std::size_t end) const {
    const std::size_t most = std::max(kWindowBytes, 2 * m_lookahead);
    return end <= most ? 0 : nextBetweenSequences(m_text, end - most);
}

bool CheapestPath::cutWindow(std::size_t start, std::size_t end) {
    const std::size_t readEnd = nextBetweenSequences(m_text, end + m_lookahead);
    const SetText window(m_images.images, m_text.substr(start, readEnd - start),
                         [](const WeightedImage& weighted) { return weighted.isFolded; });
    const EncodedText& labels = window.any();
    const std::size_t own = labelsBefore(labels, end - start);
    m_laterScores.swap(m_scores);
    m_scores.resize(labels.size() + 1);
    // Where the text ends, the score is 0.
    m_laterScores.resize(std::max<std::size_t>(m_laterScores.size(), 1));
    std::copy_n(m_laterScores.begin(), labels.size() + 1 - own,
                m_scores.begin() + static_cast<std::ptrdiff_t>(own));
    const bool isCutOff = readEnd < m_text.size();
    for (std::size_t i = own; i-- > 0;) {
        if (labels.isInsidePair(i)) continue;
        if (cutAt(window, i, start) && isCutOff) return false;
    }
    return true;
}

// Finds the best path from label `from` of the window that begins at byte `start`. Returns whether
// a walk ran into the end of the labels.
bool CheapestPath::cutAt(const SetText& window, std::size_t from, std::size_t start) {
    const EncodedText& labels = window.any();
    double best = -std::numeric_limits<double>::infinity();
    std::size_t bestEnd = from;
    const bool ran = forEachEdge(window, from, start, [&](const Edge& edge) {
        const double score = edge.weight + m_scores[edge.end];
        if (score < best) return;
        best = score;
        bestEnd = edge.end;
    });
    if (bestEnd == from) {
        const std::size_t end = from + (labels.isInsidePair(from + 1) ? 2 : 1);
        m_scores[from] = m_images.unknownWeight + m_scores[end];
        return ran;
    }
    m_scores[from] = best;
    const SPOS span = labels.span(from, bestEnd, kNoFeature);
    note(start + static_cast<std::size_t>(span.start),
         static_cast<std::size_t>(span.end + 1 - span.start));
    return ran;
}

// Calls `found(edge)` for every key at label `from`, shortest first, and returns as walkKeys.
template <class Found>
bool CheapestPath::forEachEdge(const SetText& window, std::size_t from, std::size_t start,
                               Found found) {
    const std::vector<WeightedImage>& images = m_images.images;
    const auto walk = [&](const WeightedImage& weighted, auto use) {
        const EncodedText& labels = window.of(weighted.isFolded);
        const auto isInside = [&](std::size_t place) {
            return m_wholeWords && isInsideWord(weighted, start + byteOf(labels, place));
        };
        if (isInside(from)) return false;
        const CellView& cells = weighted.image.cells();
        return walkKeys(cells, labels, from, [&](std::size_t end, std::uint32_t cell) {
            if (!labels.isInsidePair(end) && !isInside(end))
                use(Edge{end, weighted.weights.of(cells.featureOf(cell))});
        });
    };
    if (images.size() == 1) return walk(images.front(), found);
    bool ran = false;
    m_edges.clear();
    for (const WeightedImage& weighted : images) {
        ran |= walk(weighted, [&](const Edge& edge) { mergeEdge(edge); });
    }
    std::for_each(m_edges.begin(), m_edges.end(), found);
    return ran;
}

// Whether byte `place` of the text is inside a word.
bool CheapestPath::isInsideWord(const WeightedImage& weighted, std::size_t place) const {
    if (!weighted.isFolded) return Words<LabelText>(LabelText(m_text)).isInside(place);
    return Words<FoldedText>(FoldedText(m_text)).isInside(place);
}

// Puts an edge in its place by length, or in that of an earlier image's.
void CheapestPath::mergeEdge(const Edge& edge) {
    const auto place = std::lower_bound(m_edges.begin(), m_edges.end(), edge,
                                        [](const Edge& a, const Edge& b) { return a.end < b.end; });
    if (place != m_edges.end() && place->end == edge.end) {
        *place = edge;
    } else {
        m_edges.insert(place, edge);
    }
}

void CheapestPath::note(std::size_t start, std::size_t bytes) {
    m_keys[start] = static_cast<std::uint8_t>(std::min<std::size_t>(bytes, kLongKey));
    if (bytes >= kLongKey) m_longKeys.push_back({start, bytes});
}

}  // namespace Dictionary
