#include "SolitaryNodes.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Dictionary {

namespace {

bool precedesByNumber(const SolitaryNode& left, const SolitaryNode& right) {
    return left.number < right.number;
}

}  // namespace

SolitaryNodes::SolitaryNodes(const KeyPool& keys, std::vector<SolitaryRun> runs, bool inOrder)
    : m_keys(keys), m_runs(std::move(runs)), m_inOrder(inOrder) {}

bool SolitaryNodes::goDeeper() {
    m_above.clear();
    std::copy_if(m_nodes.begin(), m_nodes.end(), std::back_inserter(m_above),
                 [](const SolitaryNode& node) { return !node.isLast(); });
    // The first nodes of runs stood by the runs' makers, all others stand by their own numbers.
    if (!m_inOrder) std::sort(m_above.begin(), m_above.end(), precedesByNumber);
    m_nodes.clear();
    if (m_above.empty() && m_runsBegun == m_runs.size()) return false;
    m_depth = m_above.empty() ? m_runs[m_runsBegun].depth : m_depth + 1;
    for (const SolitaryNode& above : m_above) {
        addRunsBefore(above.number);
        m_nodes.push_back({above.number, above.left - 1, above.nextCode + 1});
    }
    addRunsBefore(kNoNumber);
    return true;
}

// Adds the first nodes of the runs that begin at the depth and whose makers' numbers are below
// `number`.
void SolitaryNodes::addRunsBefore(std::uint32_t number) {
    constexpr std::size_t kRunsAhead = 16;
    for (; m_runsBegun < m_runs.size(); ++m_runsBegun) {
        const SolitaryRun* const run = &m_runs[m_runsBegun];
        if (run->depth != m_depth || run->maker >= number) return;
        if (m_runsBegun + kRunsAhead < m_runs.size()) m_keys.prefetchBegin(run[kRunsAhead].number);
        const std::size_t nextCode = m_keys.beginOf(run->number) + run->depth + 1;
        const auto left = static_cast<std::uint32_t>(m_keys.beginOf(run->number + 1) - nextCode);
        m_nodes.push_back({run->number, left, nextCode});
    }
}

}  // namespace Dictionary
