#include "KeyTrie.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace Dictionary {

namespace {

// The first two codes of a key, such that unsigned order is the order of the codes.
std::uint64_t leadingCodes(KeyCodes key) {
    constexpr std::uint32_t kSignBit = 0x80000000u;
    std::uint64_t lead = 0;
    for (std::uint32_t i = 0; i < 2; ++i) {
        const std::uint32_t code =
            i < key.length ? static_cast<std::uint32_t>(key[i]) ^ kSignBit : 0;
        lead = lead << 32 | code;
    }
    return lead;
}

bool precedes(KeyCodes left, KeyCodes right) {
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end());
}

std::uint32_t commonPrefix(KeyCodes left, KeyCodes right) {
    const std::uint32_t limit = std::min(left.length, right.length);
    std::uint32_t shared = 0;
    while (shared < limit && left[shared] == right[shared]) ++shared;
    return shared;
}

// Stable counting sort by `keyOf`, whose values lie below `limit`.
template <class Item, class KeyOf>
void countingSort(std::vector<Item>& items, std::vector<Item>& scratch, std::size_t limit,
                  KeyOf keyOf) {
    std::vector<std::uint32_t> starts(limit + 1);
    for (const Item& item : items) ++starts[keyOf(item) + 1];
    for (std::size_t i = 1; i <= limit; ++i) starts[i] += starts[i - 1];
    scratch.resize(items.size());
    for (const Item& item : items) scratch[starts[keyOf(item)]++] = item;
    items.swap(scratch);
}

template <class Item, class KeyOf>
std::uint32_t greatest(const std::vector<Item>& items, KeyOf keyOf) {
    std::uint32_t result = 0;
    for (const Item& item : items) result = std::max(result, keyOf(item));
    return result;
}

}  // namespace

KeyTrie::KeyTrie(const KeyPool& keys) : m_keys(keys) {
    m_order.reserve(keys.size());
    m_runs.reserve(keys.size());
    for (std::uint32_t number = 1; number <= keys.size(); ++number) {
        if (keys[number].length > 0) m_order.push_back(number);
    }
    sortKeys();
    findBranches();
    findSharedNodes();
    findSolitaryRuns();
    orderForPlacement();
}

void KeyTrie::sortKeys() {
    const auto before = [this](std::uint32_t left, std::uint32_t right) {
        return precedes(m_keys[left], m_keys[right]);
    };
    m_inOrder = std::is_sorted(m_order.begin(), m_order.end(), before);
    if (m_inOrder) return;

    std::vector<std::pair<std::uint64_t, std::uint32_t>> byLead;
    byLead.reserve(m_order.size());
    for (const std::uint32_t number : m_order) {
        byLead.emplace_back(leadingCodes(m_keys[number]), number);
    }
    std::sort(byLead.begin(), byLead.end(), [&](const auto& left, const auto& right) {
        if (left.first != right.first) return left.first < right.first;
        if (before(left.second, right.second)) return true;
        if (before(right.second, left.second)) return false;
        return left.second < right.second;
    });
    std::transform(byLead.begin(), byLead.end(), m_order.begin(),
                   [](const auto& entry) { return entry.second; });
}

void KeyTrie::sortByNumber(std::vector<std::uint32_t>& ranks) const {
    const auto byNumber = [this](std::uint32_t left, std::uint32_t right) {
        return m_order[left] < m_order[right];
    };
    if (std::is_sorted(ranks.begin(), ranks.end(), byNumber)) return;
    std::sort(ranks.begin(), ranks.end(), byNumber);
}

void KeyTrie::findBranches() {
    m_branches.resize(m_order.size());
    for (std::uint32_t rank = 0; rank < m_order.size(); ++rank) {
        const std::uint32_t shared = rank == 0 ? 0 : commonPrefix(codesAt(rank - 1), codesAt(rank));
        m_branches[rank] = {shared, stepOf(rank, shared)};
    }
}

Step KeyTrie::stepOf(std::uint32_t rank, std::uint32_t prefix) const {
    const KeyCodes key = codesAt(rank);
    return {prefix < key.length ? key[prefix] : 0, key.length - prefix};
}

std::uint32_t KeyTrie::sharedWithNext(std::uint32_t rank) const {
    return rank + 1 < m_order.size() ? m_branches[rank + 1].shared : 0;
}

// Finds the maximal intervals of keys that share a prefix, innermost first, with a stack of those
// still open.
void KeyTrie::findSharedNodes() {
    struct Open {
        std::uint32_t first;
        std::uint32_t prefix;
        std::uint32_t maker;
    };
    std::vector<Open> open = {{0, 0, kNoNumber}};
    for (std::uint32_t rank = 0; rank < m_order.size(); ++rank) {
        const std::uint32_t prefix = sharedWithNext(rank);
        const std::uint32_t length = lengthAt(rank);
        m_totalPassing += length - 1;
        if (prefix < length) ++m_leafCount;
        std::uint32_t first = rank;
        std::uint32_t maker = m_order[rank];
        while (open.back().prefix > prefix) {
            const Open closed = open.back();
            open.pop_back();
            first = closed.first;
            maker = std::min(maker, closed.maker);
            addSharedNodes({first, rank + 1, 0, maker, {}}, closed.prefix,
                           std::max(prefix, open.back().prefix));
        }
        if (open.back().prefix < prefix) open.push_back({first, prefix, maker});
        open.back().maker = std::min(open.back().maker, maker);
    }
}

// The nodes of one interval: at every prefix length above its parent's all keys go on, but at
// its full prefix those end that consist of nothing else, and these come first.
void KeyTrie::addSharedNodes(const TrieNode& interval, std::uint32_t prefix,
                             std::uint32_t parentPrefix) {
    TrieNode node = interval;
    for (std::uint32_t length = parentPrefix + 1; length < prefix; ++length) {
        node.depth = length - 1;
        node.firstStep = stepOf(node.first, length);
        m_shared.push_back(node);
    }
    while (node.first < node.last && lengthAt(node.first) == prefix) ++node.first;
    if (node.passing() < 2) return;
    node.depth = prefix - 1;
    node.firstStep = stepOf(node.first, prefix);
    m_shared.push_back(node);
}

void KeyTrie::findSolitaryRuns() {
    for (std::uint32_t rank = 0; rank < m_order.size(); ++rank) addSolitaryRun(rank);
}

void KeyTrie::addSolitaryRun(std::uint32_t rank) {
    const std::uint32_t before = m_branches[rank].shared;
    const std::uint32_t after = sharedWithNext(rank);
    const std::uint32_t shared = std::max(before, after);
    const std::uint32_t length = lengthAt(rank);
    if (shared == length) return;

    // The node above is this key's alone, too, when all other keys with its prefix end there.
    SolitaryRun run = {rank, shared, m_order[rank]};
    if (before > after && lengthAt(rank - 1) == before) {
        --run.depth;
        for (std::uint32_t equal = rank - 1;; --equal) {
            run.maker = std::min(run.maker, m_order[equal]);
            if (equal == 0 || m_branches[equal].shared < before || lengthAt(equal - 1) > before) {
                break;
            }
        }
    }
    if (run.depth + 1 >= length) return;
    m_solitaryCount += length - 1 - run.depth;
    m_runs.push_back(run);
}

void KeyTrie::orderForPlacement() {
    const auto maker = [](const auto& item) { return item.maker; };
    const auto depth = [](const auto& item) { return item.depth; };
    const auto passing = [](const TrieNode& node) { return node.passing(); };
    const auto sortByDepthAndMaker = [&](auto& items, auto& scratch) {
        if (!m_inOrder) countingSort(items, scratch, m_keys.size() + 1, maker);
        countingSort(items, scratch, greatest(items, depth) + std::size_t{1}, depth);
    };

    std::vector<SolitaryRun> runScratch;
    sortByDepthAndMaker(m_runs, runScratch);

    std::vector<TrieNode> nodeScratch;
    sortByDepthAndMaker(m_shared, nodeScratch);
    const std::uint32_t most = greatest(m_shared, passing);
    countingSort(m_shared, nodeScratch, most + std::size_t{1},
                 [&](const TrieNode& node) { return most - node.passing(); });
}

void KeyTrie::childrenOf(const TrieNode& node, std::vector<TrieChild>& children) const {
    children.clear();
    const std::uint32_t prefix = node.depth + 1;
    Step step = node.firstStep;
    std::uint32_t begin = node.first;
    while (begin < node.last) {
        std::uint32_t end = begin + 1;
        while (end < node.last && m_branches[end].shared > prefix) ++end;
        std::uint32_t first = begin;
        if (step.isLast()) ++first;
        // Keys equal to one that ends there have nothing of their own.
        while (first > begin && first < end && m_branches[first].step.left == 0) ++first;
        children.push_back({step.label, begin, first, end});
        if (end < node.last) step = m_branches[end].step;
        begin = end;
    }
}

const TrieChild& KeyTrie::leadingChild(const std::vector<TrieChild>& children) const {
    if (m_inOrder) return children.front();
    const auto smallestNumber = [this](const TrieChild& child) {
        return *std::min_element(m_order.begin() + child.begin, m_order.begin() + child.end);
    };
    return *std::min_element(children.begin(), children.end(),
                             [&](const TrieChild& left, const TrieChild& right) {
                                 return smallestNumber(left) < smallestNumber(right);
                             });
}

}  // namespace Dictionary
