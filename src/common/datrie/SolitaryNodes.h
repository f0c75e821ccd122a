// Helper, not installed: the nodes of a trie that exactly one key passes, depth by depth.

#ifndef DICTIONARY_SOLITARY_NODES_H
#define DICTIONARY_SOLITARY_NODES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "KeyPool.h"
#include "TrieNodes.h"

namespace Dictionary {

class SolitaryNodes {
public:
    // `runs` stand by depth, then by maker. `inOrder` says that keys with greater numbers are
    // greater. `keys` must outlive the object.
    SolitaryNodes(const KeyPool& keys, std::vector<SolitaryRun> runs, bool inOrder);

    // Goes to the next depth that has any, the first one to begin with. False when there is none.
    bool goDeeper();

    // Those of the depth, in placement order.
    const std::vector<SolitaryNode>& nodes() const { return m_nodes; }

    Step stepBehind(const SolitaryNode& node) const {
        return {m_keys.codeAt(node.nextCode), node.left};
    }

    // Asks for the memory that stepBehind will need.
    void prefetch(const SolitaryNode& node) const { m_keys.prefetchCode(node.nextCode); }

private:
    void addRunsBefore(std::uint32_t number);

    const KeyPool& m_keys;
    const std::vector<SolitaryRun> m_runs;
    const bool m_inOrder;
    std::size_t m_runsBegun = 0;
    std::uint32_t m_depth = 0;
    std::vector<SolitaryNode> m_nodes;
    std::vector<SolitaryNode> m_above;  // scratch: the nodes from which keys go on
};

}  // namespace Dictionary

#endif
