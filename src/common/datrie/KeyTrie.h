// Helper, not installed: the trie of the keys' prefixes, as the stages in which its nodes are
// placed. Nothing in it knows about cells.
//
// With the keys sorted, a node is an interval of that order with a depth (Aho, Hopcroft and
// Ullman's lexicographic sorting; the intervals are those of Abouelhoda et al., "Replacing suffix
// trees with enhanced suffix arrays", 2004). Ranks count positions in that order from 0.

#ifndef DICTIONARY_KEY_TRIE_H
#define DICTIONARY_KEY_TRIE_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "KeyPool.h"

namespace Dictionary {

// How a key goes on behind a prefix that it has.
struct Step {
    std::int32_t label;  // the code behind the prefix, if there is one
    std::uint32_t left;  // codes behind the prefix

    bool isLast() const { return left == 1; }
};

// A node that at least one key passes: keys first to last - 1 (ranks) go on beyond it.
struct TrieNode {
    std::uint32_t first;
    std::uint32_t last;
    std::uint32_t depth;  // position of the node's last code in its keys
    std::uint32_t maker;  // the smallest number among the keys that have the node's prefix
    Step firstStep;       // of the first of those keys, behind the node

    std::uint32_t passing() const { return last - first; }
};

// A node that exactly one key passes.
struct SolitaryNode {
    std::uint32_t number;  // the key's
    std::uint32_t left;    // codes of it behind the node
    std::size_t nextCode;  // where they begin in the pool of keys

    bool isLast() const { return left == 1; }
};

// A child of a node: ranks begin to end - 1 have its prefix, of which those before `first` end
// there.
struct TrieChild {
    std::int32_t label;
    std::uint32_t begin;
    std::uint32_t first;
    std::uint32_t end;

    bool isLeaf() const { return first == end; }
};

// Placement takes nodes by passing keys falling, then depth rising, then maker rising. A node that
// several keys pass is kept as a record. The nodes that one key passes, nearly all of them, follow
// from where each key's solitary run begins, and leaves need no order.
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

    // Turns from the shared nodes, which go with all that belongs to them, to the solitary ones.
    void beginSolitaryNodes();
    // Goes from the solitary nodes of one depth, in placement order, to those of the next depth
    // that has any. The first are behind none. False when there are no more.
    bool nextSolitaryNodes(std::vector<SolitaryNode>& nodes);
    Step stepBehind(const SolitaryNode& node) const {
        return {m_keys.codeAt(node.nextCode), node.left};
    }

    // Asks for the memory that childrenOf or stepBehind will need. Nodes that are placed one after
    // the other lie far apart, so their cache misses are better taken together.
    void prefetch(const TrieNode& node) const {
        __builtin_prefetch(&m_branches[node.first]);
        if (!m_inOrder) __builtin_prefetch(&m_order[node.first]);
    }
    void prefetch(const SolitaryNode& node) const { m_keys.prefetchCode(node.nextCode); }

    // Fills `children` with the children of a node, by label.
    void childrenOf(const TrieNode& node, std::vector<TrieChild>& children) const;

    // The implicit root: all ranks pass it, and its children stand at depth 0.
    static constexpr std::uint32_t kRootDepth = static_cast<std::uint32_t>(-1);
    TrieNode root() const { return {0, m_keyCount, kRootDepth, 0, m_branches[0].step}; }

    // The child that the key with the smallest number takes, among those of a node.
    const TrieChild& leadingChild(const std::vector<TrieChild>& children) const;

    // The number of the key at a rank.
    std::uint32_t keyAt(std::uint32_t rank) const {
        return m_inOrder ? m_firstNumber + rank : m_order[rank];
    }

private:
    // A key's codes: `shared` ones of the key one rank before, then those of the step.
    struct Branch {
        std::uint32_t shared;
        Step step;

        std::uint32_t length() const { return shared + step.left; }
    };
    // Where the solitary nodes of a key begin.
    struct SolitaryRun {
        std::uint32_t number;
        std::uint32_t depth;
        std::uint32_t maker;  // of the run's first node; the others were made by the key itself
    };

    static constexpr std::uint32_t kNoNumber = static_cast<std::uint32_t>(-1);

    KeyCodes codesAt(std::uint32_t rank) const { return m_keys[keyAt(rank)]; }
    void sortKeys();
    bool findBranches();
    void findSharedNodes();
    void addSharedNodes(const TrieNode& interval, std::uint32_t prefix, std::uint32_t parentPrefix);
    void addSolitaryRun(std::uint32_t rank);
    void addRunsBefore(std::uint32_t number, std::vector<SolitaryNode>& nodes);
    template <class Item>
    void sortByDepthAndMaker(std::vector<Item>& items, std::vector<Item>& scratch) const;
    std::uint32_t sharedWithNext(std::uint32_t rank) const;
    std::uint32_t lengthAt(std::uint32_t rank) const { return m_branches[rank].length(); }
    Step stepOf(std::uint32_t rank, std::uint32_t prefix) const;

    const KeyPool& m_keys;
    std::uint32_t m_firstNumber = 1;     // of the keys with codes, if they were added in order
    std::uint32_t m_keyCount = 0;        // of those
    bool m_inOrder = true;               // the keys were added in sorted order
    std::vector<std::uint32_t> m_order;  // key numbers by rank if they were not
    std::vector<Branch> m_branches;      // by rank
    std::vector<TrieNode> m_shared;
    std::vector<SolitaryRun> m_runs;  // by depth, then maker
    std::size_t m_runsBegun = 0;
    std::uint32_t m_solitaryDepth = 0;  // of the solitary nodes gone to last
    std::vector<SolitaryNode> m_above;  // scratch of nextSolitaryNodes
    std::uint64_t m_totalPassing = 0;
    std::uint64_t m_leafCount = 0;
};

}  // namespace Dictionary

#endif
