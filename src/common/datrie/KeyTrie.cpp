#include "KeyTrie.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Dictionary {

namespace {

// The first two codes of a key, as an unsigned number of the same order.
std::uint64_t leadingCodes(KeyCodes key) {
    constexpr std::uint32_t kSignBit = 0x80000000u;
    std::uint64_t lead = 0;
    for (std::uint32_t i = 0; i < 2; ++i) {
        const std::uint32_t code =
            i < key.length() ? static_cast<std::uint32_t>(key[i]) ^ kSignBit : 0;
        lead = lead << 32 | code;
    }
    return lead;
}

std::uint32_t commonPrefix(KeyCodes left, KeyCodes right) {
    const std::uint32_t limit = std::min(left.length(), right.length());
    std::uint32_t shared = 0;
    while (shared < limit && left[shared] == right[shared]) ++shared;
    return shared;
}

// Negative, 0 or positive if the left key comes before the right one, is equal to it or comes after
// it. Their first `shared` codes are the same, and no more.
int compareAfter(std::uint32_t shared, KeyCodes left, KeyCodes right) {
    const bool leftEnds = shared == left.length();
    const bool rightEnds = shared == right.length();
    if (leftEnds || rightEnds) return rightEnds - leftEnds;
    return left[shared] < right[shared] ? -1 : 1;
}

int compare(KeyCodes left, KeyCodes right) {
    return compareAfter(commonPrefix(left, right), left, right);
}

// Stable counting sort by `keyOf`, whose values are below `limit`.
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
    while (m_firstNumber <= keys.size() && keys[m_firstNumber].length() == 0) ++m_firstNumber;
    m_keyCount = keys.size() + 1 - m_firstNumber;
    m_inOrder = findBranches();
    if (!m_inOrder) {
        sortKeys();
        findBranches();
    }
    findSharedNodes();
}

void KeyTrie::sortKeys() {
    std::vector<std::pair<std::uint64_t, std::uint32_t>> byLead;
    for (std::uint32_t number = 1; number <= m_keys.size(); ++number) {
        if (m_keys[number].length() > 0) byLead.emplace_back(leadingCodes(m_keys[number]), number);
    }
    std::sort(byLead.begin(), byLead.end(), [this](const auto& left, const auto& right) {
        if (left.first != right.first) return left.first < right.first;
        const int order = compare(m_keys[left.second], m_keys[right.second]);
        return order != 0 ? order < 0 : left.second < right.second;
    });
    m_keyCount = static_cast<std::uint32_t>(byLead.size());
    m_order.reserve(byLead.size());
    for (const auto& entry : byLead) m_order.push_back(entry.second);
}

// Stops and returns false if a key comes before a smaller one.
bool KeyTrie::findBranches() {
    m_branches.resize(m_keyCount);
    std::size_t sharedPrefixes = 0;
    for (std::uint32_t rank = 0; rank < m_keyCount; ++rank) {
        std::uint32_t shared = 0;
        if (rank > 0) {
            const KeyCodes before = codesAt(rank - 1);
            const KeyCodes key = codesAt(rank);
            shared = commonPrefix(before, key);
            if (compareAfter(shared, before, key) > 0) return false;
            sharedPrefixes += shared - std::min(shared, m_branches[rank - 1].shared);
        }
        m_branches[rank] = {shared, stepOf(rank, shared)};
    }
    m_shared.reserve(sharedPrefixes);
    return true;
}

Step KeyTrie::stepOf(std::uint32_t rank, std::uint32_t prefix) const {
    const KeyCodes key = codesAt(rank);
    return {prefix < key.length() ? key[prefix] : 0, key.length() - prefix};
}

std::uint32_t KeyTrie::sharedWithNext(std::uint32_t rank) const {
    return rank + 1 < m_keyCount ? m_branches[rank + 1].shared : 0;
}

// Finds the maximal intervals of keys that share a prefix, innermost first, with a stack of those
// still open.
void KeyTrie::findSharedNodes() {
    struct Open {
        std::uint32_t begin;
        std::uint32_t prefix;
        std::uint32_t smallestKey;
    };
    std::vector<Open> open = {{0, 0, kNoNumber}};
    for (std::uint32_t rank = 0; rank < m_keyCount; ++rank) {
        const std::uint32_t prefix = sharedWithNext(rank);
        const std::uint32_t length = lengthAt(rank);
        m_totalPassing += length - 1;
        if (prefix < length) ++m_leafCount;
        std::uint32_t begin = rank;
        std::uint32_t smallestKey = keyAt(rank);
        while (open.back().prefix > prefix) {
            const Open closed = open.back();
            open.pop_back();
            begin = closed.begin;
            smallestKey = std::min(smallestKey, closed.smallestKey);
            addSharedNodes({begin, rank + 1, 0, smallestKey, {}}, closed.prefix,
                           std::max(prefix, open.back().prefix));
        }
        if (open.back().prefix < prefix) open.push_back({begin, prefix, smallestKey});
        open.back().smallestKey = std::min(open.back().smallestKey, smallestKey);
    }

    std::vector<TrieNode> scratch;
    sortByDepthAndKey(m_shared, scratch);
    const auto passing = [](const TrieNode& node) { return node.passing(); };
    const std::uint32_t most = greatest(m_shared, passing);
    countingSort(m_shared, scratch, most,
                 [&](const TrieNode& node) { return most - node.passing(); });
}

template <class Item>
void KeyTrie::sortByDepthAndKey(std::vector<Item>& items, std::vector<Item>& scratch) const {
    const auto smallestKey = [](const Item& item) { return item.smallestKey; };
    const auto depth = [](const Item& item) { return item.depth; };
    if (!m_inOrder) countingSort(items, scratch, m_keys.size() + 1, smallestKey);
    countingSort(items, scratch, greatest(items, depth) + std::size_t{1}, depth);
}

// Adds the nodes of one interval. At prefix lengths between its parent's and its own, all its keys
// go on. At its own prefix, the keys that are no longer than it end; they come first.
void KeyTrie::addSharedNodes(const TrieNode& interval, std::uint32_t prefix,
                             std::uint32_t parentPrefix) {
    TrieNode node = interval;
    for (std::uint32_t length = parentPrefix + 1; length < prefix; ++length) {
        node.depth = length - 1;
        node.firstStep = stepOf(node.begin, length);
        m_shared.push_back(node);
    }
    while (node.begin < node.end && lengthAt(node.begin) == prefix) ++node.begin;
    if (node.passing() < 2) return;
    node.depth = prefix - 1;
    node.firstStep = stepOf(node.begin, prefix);
    m_shared.push_back(node);
}

TailNodes KeyTrie::takeTailNodes() {
    std::vector<TrieNode>().swap(m_shared);
    std::vector<Tail> tails;
    tails.reserve(m_leafCount);
    for (std::uint32_t rank = 0; rank < m_keyCount; ++rank) addTail(rank, tails);
    std::vector<Branch>().swap(m_branches);
    std::vector<Tail> scratch;
    sortByDepthAndKey(tails, scratch);
    return {m_keys, std::move(tails), m_inOrder};
}

void KeyTrie::addTail(std::uint32_t rank, std::vector<Tail>& tails) const {
    const std::uint32_t before = m_branches[rank].shared;
    const std::uint32_t after = sharedWithNext(rank);
    const std::uint32_t shared = std::max(before, after);
    const std::uint32_t length = lengthAt(rank);
    if (shared == length) return;

    // The node above is this key's alone, too, if all other keys with that prefix end there.
    Tail tail = {keyAt(rank), shared, keyAt(rank)};
    if (before > after && lengthAt(rank - 1) == before) {
        --tail.depth;
        for (std::uint32_t equal = rank - 1;; --equal) {
            tail.smallestKey = std::min(tail.smallestKey, keyAt(equal));
            if (equal == 0 || m_branches[equal].shared < before) break;
        }
    }
    if (tail.depth + 1 >= length) return;
    tails.push_back(tail);
}

void KeyTrie::childrenOf(const TrieNode& node, std::vector<TrieChild>& children) const {
    children.clear();
    const std::uint32_t prefix = node.depth + 1;
    Step step = node.firstStep;
    std::uint32_t begin = node.begin;
    while (begin < node.end) {
        std::uint32_t end = begin + 1;
        while (end < node.end && m_branches[end].shared > prefix) ++end;
        std::uint32_t firstPassing = begin;
        if (step.isLast()) ++firstPassing;
        // Keys equal to one that ends there have no codes of their own.
        while (firstPassing > begin && firstPassing < end &&
               m_branches[firstPassing].step.left == 0) {
            ++firstPassing;
        }
        children.push_back({step.label, begin, firstPassing, end});
        if (end < node.end) step = m_branches[end].step;
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
