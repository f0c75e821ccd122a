#include "KeyTrie.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Dictionary {

namespace {

// The first two codes of a key, such that unsigned order is the order of the codes.
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

// Negative, 0 or positive as the left key stands before the right one, is equal to it, or stands
// behind it. Their first `shared` codes are the same, the ones that follow are not.
int compareBehind(std::uint32_t shared, KeyCodes left, KeyCodes right) {
    const bool leftEnds = shared == left.length();
    const bool rightEnds = shared == right.length();
    if (leftEnds || rightEnds) return rightEnds - leftEnds;
    return left[shared] < right[shared] ? -1 : 1;
}

int compare(KeyCodes left, KeyCodes right) {
    return compareBehind(commonPrefix(left, right), left, right);
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

// False, with the rest left undone, where a key stands before a smaller one.
bool KeyTrie::findBranches() {
    m_branches.resize(m_keyCount);
    std::size_t sharedPrefixes = 0;
    for (std::uint32_t rank = 0; rank < m_keyCount; ++rank) {
        std::uint32_t shared = 0;
        if (rank > 0) {
            const KeyCodes before = codesAt(rank - 1);
            const KeyCodes key = codesAt(rank);
            shared = commonPrefix(before, key);
            if (compareBehind(shared, before, key) > 0) return false;
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
        std::uint32_t first;
        std::uint32_t prefix;
        std::uint32_t maker;
    };
    std::vector<Open> open = {{0, 0, kNoNumber}};
    for (std::uint32_t rank = 0; rank < m_keyCount; ++rank) {
        const std::uint32_t prefix = sharedWithNext(rank);
        const std::uint32_t length = lengthAt(rank);
        m_totalPassing += length - 1;
        if (prefix < length) ++m_leafCount;
        std::uint32_t first = rank;
        std::uint32_t maker = keyAt(rank);
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

    std::vector<TrieNode> scratch;
    sortByDepthAndMaker(m_shared, scratch);
    const auto passing = [](const TrieNode& node) { return node.passing(); };
    const std::uint32_t most = greatest(m_shared, passing);
    countingSort(m_shared, scratch, most + std::size_t{1},
                 [&](const TrieNode& node) { return most - node.passing(); });
}

template <class Item>
void KeyTrie::sortByDepthAndMaker(std::vector<Item>& items, std::vector<Item>& scratch) const {
    const auto maker = [](const Item& item) { return item.maker; };
    const auto depth = [](const Item& item) { return item.depth; };
    if (!m_inOrder) countingSort(items, scratch, m_keys.size() + 1, maker);
    countingSort(items, scratch, greatest(items, depth) + std::size_t{1}, depth);
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

SolitaryNodes KeyTrie::takeSolitaryNodes() {
    std::vector<TrieNode>().swap(m_shared);
    std::vector<SolitaryRun> runs;
    runs.reserve(m_leafCount);
    for (std::uint32_t rank = 0; rank < m_keyCount; ++rank) addSolitaryRun(rank, runs);
    std::vector<Branch>().swap(m_branches);
    std::vector<SolitaryRun> scratch;
    sortByDepthAndMaker(runs, scratch);
    return {m_keys, std::move(runs), m_inOrder};
}

void KeyTrie::addSolitaryRun(std::uint32_t rank, std::vector<SolitaryRun>& runs) const {
    const std::uint32_t before = m_branches[rank].shared;
    const std::uint32_t after = sharedWithNext(rank);
    const std::uint32_t shared = std::max(before, after);
    const std::uint32_t length = lengthAt(rank);
    if (shared == length) return;

    // The node above is this key's alone, too, when all other keys with its prefix end there.
    SolitaryRun run = {keyAt(rank), shared, keyAt(rank)};
    if (before > after && lengthAt(rank - 1) == before) {
        --run.depth;
        for (std::uint32_t equal = rank - 1;; --equal) {
            run.maker = std::min(run.maker, keyAt(equal));
            if (equal == 0 || m_branches[equal].shared < before || lengthAt(equal - 1) > before) {
                break;
            }
        }
    }
    if (run.depth + 1 >= length) return;
    runs.push_back(run);
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
