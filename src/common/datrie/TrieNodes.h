// Helper, not installed: what is told of a trie's nodes, by the ranks of keys in sorted order and
// by their numbers in the order in which they were added.

#ifndef DICTIONARY_TRIE_NODES_H
#define DICTIONARY_TRIE_NODES_H

#include <cstddef>
#include <cstdint>

namespace Dictionary {

// Stands behind the numbers of all keys.
constexpr std::uint32_t kNoNumber = static_cast<std::uint32_t>(-1);

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

// A child of a node: ranks begin to end - 1 have its prefix, of which those before `first` end
// there.
struct TrieChild {
    std::int32_t label;
    std::uint32_t begin;
    std::uint32_t first;
    std::uint32_t end;

    bool isLeaf() const { return first == end; }
};

// Where the nodes begin that one key alone passes; they go on to the key's end.
struct SolitaryRun {
    std::uint32_t number;  // the key's
    std::uint32_t depth;
    std::uint32_t maker;  // of the run's first node; the others were made by the key itself
};

// A node that exactly one key passes.
struct SolitaryNode {
    std::uint32_t number;  // the key's
    std::uint32_t left;    // codes of it behind the node
    std::size_t nextCode;  // where they begin in the pool of keys

    bool isLast() const { return left == 1; }
};

}  // namespace Dictionary

#endif
