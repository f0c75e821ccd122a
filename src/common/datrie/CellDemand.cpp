#include "CellDemand.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "StringTable.h"

namespace Dictionary {

namespace {

std::int64_t pairsOf(std::int64_t count) {
    return count * (count - 1) / 2;
}

// How many of the shared nodes, which come with most keys first, may have enough labels to matter.
// Nodes with the same n labels never need more than pairsOf(n) + 1 cells from one to the next.
std::size_t candidates(const std::vector<TrieNode>& nodes, std::int64_t enough) {
    for (std::size_t count = nodes.size(); count > 0; --count) {
        const std::int64_t least = pairsOf(nodes[count - 1].passing()) + 1;
        if (least >= enough / static_cast<std::int64_t>(count)) return count;
    }
    return 0;
}

// The greatest n such that every number from 1 to n is the difference of two labels. The bases of
// two nodes with these labels are at least n + 1 apart.
std::int64_t coveredDifferences(const std::vector<std::int32_t>& labels) {
    std::vector<bool> isCovered(
        static_cast<std::size_t>(pairsOf(static_cast<std::int64_t>(labels.size())) + 2));
    for (std::size_t i = 0; i < labels.size(); ++i) {
        for (std::size_t j = i + 1; j < labels.size(); ++j) {
            const auto difference = static_cast<std::size_t>(std::int64_t{labels[j]} - labels[i]);
            if (difference < isCovered.size()) isCovered[difference] = true;
        }
    }
    isCovered[0] = true;
    return std::find(isCovered.begin(), isCovered.end(), false) - isCovered.begin() - 1;
}

// A lower bound on the cells of `nodes` nodes whose labels are the same except for a shift; 0 if it
// is surely below `enough`.
std::int64_t leastOfAlike(const std::vector<std::int32_t>& labels, std::int64_t nodes,
                          std::int64_t enough) {
    const auto count = static_cast<std::int64_t>(labels.size());
    const std::int64_t span = std::int64_t{labels.back()} + 1;
    if ((nodes - 1) * (pairsOf(count) + 1) + span < enough) return 0;
    return (nodes - 1) * (coveredDifferences(labels) + 1) + span;
}

std::vector<std::int32_t> labelsOf(std::string_view bytes) {
    std::vector<std::int32_t> labels(bytes.size() / sizeof(std::int32_t));
    std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(labels.data()));
    return labels;
}

}  // namespace

std::int64_t leastCells(const KeyTrie& trie, std::int64_t enough) {
    StringTable patterns;  // sets of labels, less the smallest of each
    std::vector<std::int64_t> nodes;
    std::vector<TrieChild> children;
    std::vector<std::int32_t> labels;
    const std::size_t count = candidates(trie.sharedNodes(), enough);
    for (std::size_t i = 0; i < count; ++i) {
        trie.childrenOf(trie.sharedNodes()[i], children);
        labels.clear();
        for (const TrieChild& child : children) {
            labels.push_back(child.label - children[0].label);
        }
        const std::uint32_t pattern = patterns.add(
            {reinterpret_cast<const char*>(labels.data()), labels.size() * sizeof labels[0]});
        nodes.resize(patterns.size());
        ++nodes[pattern];
    }
    std::int64_t least = 0;
    for (std::uint32_t pattern = 0; pattern < patterns.size(); ++pattern) {
        least = std::max(least, leastOfAlike(labelsOf(patterns[pattern]), nodes[pattern], enough));
    }
    return least;
}

}  // namespace Dictionary
