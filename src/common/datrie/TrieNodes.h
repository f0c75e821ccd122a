// Helper, not installed: what is known of a trie's nodes. Ranks count keys in sorted order, numbers
// in the order in which they were added.

#ifndef DICTIONARY_TRIE_NODES_H
#define DICTIONARY_TRIE_NODES_H

#include <cstddef>
#include <cstdint>

namespace Dictionary {

// Greater than the number of every key.
constexpr std::uint32_t kNoNumber = static_cast<std::uint32_t>(-1);

// How a key goes on after one of its prefixes.
struct Step {
    std::int32_t label;  // the code after the prefix, if any
    std::uint32_t left;  // codes after the prefix

    bool isLast() const { return left == 1; }
};

// A node that at least one key passes: the keys of ranks begin to end - 1 go on beyond it.
struct TrieNode {
    std::uint32_t begin;
    std::uint32_t end;
    std::uint32_t depth;        // position of the node's last code in its keys
    std::uint32_t smallestKey;  // the smallest number among the keys that have the node's prefix
    Step firstStep;             // of the first of those keys, after the node

    std::uint32_t passing() const { return end - begin; }
};

// A child of a node: the keys of ranks begin to end - 1 have its prefix. Those before firstPassing
// end there, the others pass it.
struct TrieChild {
    std::int32_t label;
    std::uint32_t begin;
    std::uint32_t firstPassing;
    std::uint32_t end;

    bool isLeaf() const { return firstPassing == end; }
};

// The nodes that only this key passes: from a depth on, up to the key's end.
struct Tail {
    std::uint32_t key;
    std::uint32_t depth;
    std::uint32_t smallestKey;  // of the first node; for the others it is `key`
};

// A node of a tail.
struct TailNode {
    std::uint32_t key;
    std::uint32_t left;    // codes of the key after the node
    std::size_t nextCode;  // where they begin in the pool of keys

    bool isLast() const { return left == 1; }
};

}  // namespace Dictionary

#endif
