// Helper, not installed: the trie of the keys' prefixes, with its nodes in the order in which they
// are placed. Nothing in it knows about cells.
//
// When the keys are sorted, a node is an interval of them with a depth (Aho, Hopcroft and Ullman's
// lexicographic sorting; the intervals are those of Abouelhoda et al., "Replacing suffix trees with
// enhanced suffix arrays", 2004). Ranks count positions in sorted order from 0.

#ifndef DICTIONARY_KEY_TRIE_H
#define DICTIONARY_KEY_TRIE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "KeyPool.h"
#include "TailNodes.h"
#include "TrieNodes.h"

namespace Dictionary {

// Nodes are placed by the number of passing keys, descending, then by depth, then by smallest key,
// both ascending. A node that several keys pass is stored as a TrieNode. The nodes that one key
// passes, nearly all of them, are computed from where the tail of each key begins. Leaves need no
// order.
class KeyTrie {
public:
    // Sorts the keys and finds the nodes. Keys without codes have none. `keys` must outlive the
    // trie and not change.
    explicit KeyTrie(const KeyPool& keys);

    bool empty() const { return m_keyCount == 0; }
    std::uint64_t totalPassing() const { return m_totalPassing; }
    std::uint64_t leafCount() const { return m_leafCount; }

    // The nodes that at least two keys pass, in placement order.
    const std::vector<TrieNode>& sharedNodes() const { return m_shared; }

    // The nodes that one key passes. Drops the shared nodes, with everything that belongs to them.
    TailNodes takeTailNodes();

    // Prefetches what childrenOf will need. Nodes that are placed one after the other are far apart
    // in memory; prefetching lets their cache misses overlap.
    void prefetch(const TrieNode& node) const {
        __builtin_prefetch(&m_branches[node.begin]);
        if (!m_inOrder) __builtin_prefetch(&m_order[node.begin]);
    }

    // Fills `children` with the children of a node, by label.
    void childrenOf(const TrieNode& node, std::vector<TrieChild>& children) const;

    // The implicit root: all ranks pass it, and its children are at depth 0.
    static constexpr std::uint32_t kRootDepth = static_cast<std::uint32_t>(-1);
    TrieNode root() const { return {0, m_keyCount, kRootDepth, 0, m_branches[0].step}; }

    // Of the children of a node, the one that the key with the smallest number goes on to.
    const TrieChild& leadingChild(const std::vector<TrieChild>& children) const;

    // The number of the key at a rank.
    std::uint32_t keyAt(std::uint32_t rank) const {
        return m_inOrder ? m_firstNumber + rank : m_order[rank];
    }

private:
    // A key's codes: the first `shared` codes of the key one rank before, then those of the step.
    struct Branch {
        std::uint32_t shared;
        Step step;

        std::uint32_t length() const { return shared + step.left; }
    };
    KeyCodes codesAt(std::uint32_t rank) const { return m_keys[keyAt(rank)]; }
    void sortKeys();
    bool findBranches();
    void findSharedNodes();
    void addSharedNodes(const TrieNode& interval, std::uint32_t prefix, std::uint32_t parentPrefix);
    void addTail(std::uint32_t rank, std::vector<Tail>& tails) const;
    template <class Item>
    void sortByDepthAndKey(std::vector<Item>& items, std::vector<Item>& scratch) const;
    std::uint32_t sharedWithNext(std::uint32_t rank) const;
    std::uint32_t lengthAt(std::uint32_t rank) const { return m_branches[rank].length(); }
    Step stepOf(std::uint32_t rank, std::uint32_t prefix) const;

    const KeyPool& m_keys;
    std::uint32_t m_firstNumber = 1;     // of the first key with codes, if they were added in order
    std::uint32_t m_keyCount = 0;        // keys with codes
    bool m_inOrder = true;               // the keys were added in sorted order
    std::vector<std::uint32_t> m_order;  // key numbers by rank if they were not
    std::vector<Branch> m_branches;      // by rank
    std::vector<TrieNode> m_shared;
    std::uint64_t m_totalPassing = 0;
    std::uint64_t m_leafCount = 0;
};

}  // namespace Dictionary

#endif
