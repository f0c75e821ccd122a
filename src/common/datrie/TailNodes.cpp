#include "TailNodes.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Dictionary {

namespace {

bool precedesByKey(const TailNode& left, const TailNode& right) {
    return left.key < right.key;
}

}  // namespace

TailNodes::TailNodes(const KeyPool& keys, std::vector<Tail> tails, bool inOrder)
    : m_keys(keys), m_tails(std::move(tails)), m_inOrder(inOrder) {}

bool TailNodes::goDeeper() {
    m_above.clear();
    std::copy_if(m_nodes.begin(), m_nodes.end(), std::back_inserter(m_above),
                 [](const TailNode& node) { return !node.isLast(); });
    // The first nodes of tails are sorted by smallest key, all others by their own key.
    if (!m_inOrder) std::sort(m_above.begin(), m_above.end(), precedesByKey);
    m_nodes.clear();
    if (m_above.empty() && m_tailsBegun == m_tails.size()) return false;
    m_depth = m_above.empty() ? m_tails[m_tailsBegun].depth : m_depth + 1;
    for (const TailNode& above : m_above) {
        addTailsBefore(above.key);
        m_nodes.push_back({above.key, above.left - 1, above.nextCode + 1});
    }
    addTailsBefore(kNoNumber);
    return true;
}

// Adds the first nodes of the tails that begin at the current depth and whose smallest key is below
// `key`.
void TailNodes::addTailsBefore(std::uint32_t key) {
    constexpr std::size_t kTailsAhead = 16;
    for (; m_tailsBegun < m_tails.size(); ++m_tailsBegun) {
        const Tail* const tail = &m_tails[m_tailsBegun];
        if (tail->depth != m_depth || tail->smallestKey >= key) return;
        if (m_tailsBegun + kTailsAhead < m_tails.size()) {
            m_keys.prefetchBegin(tail[kTailsAhead].key);
        }
        const std::size_t nextCode = m_keys.beginOf(tail->key) + tail->depth + 1;
        const auto left = static_cast<std::uint32_t>(m_keys.beginOf(tail->key + 1) - nextCode);
        m_nodes.push_back({tail->key, left, nextCode});
    }
}

}  // namespace Dictionary
