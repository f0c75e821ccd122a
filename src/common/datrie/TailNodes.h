// Helper, not installed: the nodes of a trie that exactly one key passes, depth by depth.

#ifndef DICTIONARY_TAIL_NODES_H
#define DICTIONARY_TAIL_NODES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "KeyPool.h"
#include "TrieNodes.h"

namespace Dictionary {

class TailNodes {
public:
    // `tails` are sorted by depth, then by smallestKey. `inOrder` says that the keys were added in
    // sorted order. `keys` must outlive the object.
    TailNodes(const KeyPool& keys, std::vector<Tail> tails, bool inOrder);

    // Goes to the next depth that has nodes; the first call goes to the first such depth. Returns
    // false when there is none.
    bool goDeeper();

    // The nodes of the current depth, in placement order.
    const std::vector<TailNode>& nodes() const { return m_nodes; }

    Step stepAfter(const TailNode& node) const { return {m_keys.codeAt(node.nextCode), node.left}; }

    // Prefetches what stepAfter will need.
    void prefetch(const TailNode& node) const { m_keys.prefetchCode(node.nextCode); }

private:
    void addTailsBefore(std::uint32_t key);

    const KeyPool& m_keys;
    const std::vector<Tail> m_tails;
    const bool m_inOrder;
    std::size_t m_tailsBegun = 0;
    std::uint32_t m_depth = 0;
    std::vector<TailNode> m_nodes;
    std::vector<TailNode> m_above;  // scratch: nodes of the depth above from which keys go on
};

}  // namespace Dictionary

#endif
