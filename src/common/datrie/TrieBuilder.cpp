#include "TrieBuilder.h"

#include <algorithm>
#include <cstring>

#include "CellDemand.h"
#include "ImageFormat.h"

namespace Dictionary {

namespace {

// A record's text ends at its string's first NUL.
std::string_view recordText(std::string_view feature) {
    return feature.substr(0, feature.find('\0'));
}

// Prefetch distances, in nodes: of what a node needs, and of what that points to.
constexpr std::size_t kFarAhead = 16;
constexpr std::size_t kNearAhead = 8;

}  // namespace

void TrieBuilder::reserve(std::size_t keys, std::size_t codes) {
    m_keys.reserve(keys, codes);
    m_keyStrings.reserve(keys + 1);
}

bool TrieBuilder::addKey(ICoderInterface& coder, const char* key, bool reverse,
                         std::string_view feature) {
    m_codes.clear();
    m_positions.clear();
    if (coder.encodeString(key, m_codes, m_positions, -1) == 0) return false;
    if (reverse) std::reverse(m_codes.begin(), m_codes.end());
    std::uint32_t string = m_strings.add(feature);
    const auto early = m_earlyStrings.find(m_keyStrings.size());
    if (early != m_earlyStrings.end()) keepGreater(string, early->second);
    m_keys.add(m_codes);
    m_keyStrings.push_back(string);
    return true;
}

void TrieBuilder::attachFeature(std::string_view feature, int key) {
    const std::uint32_t string = m_strings.add(feature);
    if (key < 0) return;
    const auto number = static_cast<std::size_t>(key);
    const bool isEarly = number >= m_keyStrings.size();
    keepGreater(isEarly ? m_earlyStrings.try_emplace(number, kNoString).first->second
                        : m_keyStrings[number],
                string);
}

void TrieBuilder::keepGreater(std::uint32_t& kept, std::uint32_t string) const {
    if (kept == kNoString || m_strings[kept] < m_strings[string]) kept = string;
}

void TrieBuilder::clear() {
    m_trie.reset();
    m_featureArea.reset(true, nullptr, 0, 0);
    m_cells.clear();
}

void TrieBuilder::storeRecord(std::string_view text) {
    CFeatureData record;
    record.length = static_cast<int>(text.size());
    record.text = text;
    m_featureArea.write(record);
}

void TrieBuilder::storeFeatures() {
    const std::vector<std::uint32_t> order = m_strings.sorted();
    const auto before = static_cast<std::size_t>(m_featureArea.size());
    std::size_t bytes = before;
    for (const std::uint32_t string : order)
        bytes += kRecordLengthBytes + recordText(m_strings[string]).size();
    m_featuresFit = bytes <= static_cast<std::size_t>(kMaxImageBytes);
    if (!m_featuresFit) return;

    auto area = std::make_unique<char[]>(bytes);
    m_recordOffsets.resize(order.size());
    char* end = std::copy_n(m_featureArea.data(), before, area.get());
    for (const std::uint32_t string : order) {
        const std::string_view text = recordText(m_strings[string]);
        const auto length = static_cast<RecordLength>(text.size());
        m_recordOffsets[string] = static_cast<std::int32_t>(end - area.get());
        std::memcpy(end, &length, kRecordLengthBytes);
        std::memcpy(end + kRecordLengthBytes, text.data(), text.size());
        end += kRecordLengthBytes + text.size();
    }
    const int size = static_cast<int>(bytes);
    m_featureArea.reset(true, area.release(), size, size);
    if (m_isOnlyBuild) m_strings = StringTable();
}

void TrieBuilder::makeTrie() {
    m_trie = std::make_unique<KeyTrie>(m_keys);
}

// An image is written with one more cell than there are, and it must still fit.
std::int64_t TrieBuilder::cellLimit() const {
    return (kMaxImageBytes - m_featureArea.size()) / kCellBytes - 1;
}

bool TrieBuilder::mayFit() const {
    const std::int64_t room = cellLimit() - m_cells.firstShared();
    return m_featuresFit && leastCells(*m_trie, room) <= room;
}

Placement TrieBuilder::place(PlacementListener& listener) {
    m_running = m_nextPause = 0;
    m_total = m_trie == nullptr ? 0 : m_trie->totalPassing();
    if (m_trie == nullptr || m_trie->empty()) return Placement::kNothingToPlace;
    if (!m_featuresFit) return Placement::kNoRoom;
    m_cells.limitTo(cellLimit());
    m_cellOfKey.assign(m_keys.size() + std::size_t{1}, 0);
    const bool fits = placeAll(listener);
    m_trie.reset();
    std::vector<std::int32_t>().swap(m_cellOfKey);
    return fits ? Placement::kPlaced : Placement::kNoRoom;
}

bool TrieBuilder::placeAll(PlacementListener& listener) {
    if (!placeRoot() || !placeAllShared(listener)) return false;
    m_cells.endWideSearches();
    if (!placeAllTails(listener)) return false;
    // Leaves were completed with their parents; here they are only counted.
    for (std::uint64_t leaf = 0; leaf < m_trie->leafCount(); ++leaf) count(0, listener);
    return true;
}

bool TrieBuilder::placeAllShared(PlacementListener& listener) {
    const std::vector<TrieNode>& nodes = m_trie->sharedNodes();
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (i + kFarAhead < nodes.size()) {
            const TrieNode& far = nodes[i + kFarAhead];
            m_trie->prefetch(far);
            __builtin_prefetch(&m_cellOfKey[m_trie->keyAt(far.begin)]);
            const std::uint32_t near = m_trie->keyAt(nodes[i + kNearAhead].begin);
            m_cells.prefetch(m_cellOfKey[near]);
            __builtin_prefetch(&m_keyStrings[near]);
        }
        count(nodes[i].passing(), listener);
        if (!placeShared(nodes[i])) return false;
    }
    return true;
}

bool TrieBuilder::placeAllTails(PlacementListener& listener) {
    TailNodes tails = m_trie->takeTailNodes();
    while (tails.goDeeper()) {
        const std::vector<TailNode>& nodes = tails.nodes();
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            if (i + kFarAhead < nodes.size()) {
                const TailNode& far = nodes[i + kFarAhead];
                tails.prefetch(far);
                __builtin_prefetch(&m_cellOfKey[far.key]);
                m_cells.prefetch(m_cellOfKey[nodes[i + kNearAhead].key]);
            }
            count(1, listener);
            if (!placeTailNode(nodes[i].key, tails.stepAfter(nodes[i]))) return false;
        }
    }
    return true;
}

void TrieBuilder::count(std::uint64_t passing, PlacementListener& listener) {
    m_running += passing;
    if (m_running >= m_nextPause) {
        m_nextPause = m_running + PlacementListener::kPauseStep;
        listener.pause(m_running, m_total);
    }
    if (m_running % PlacementListener::kReportStep == 0) {
        listener.report(m_running, m_total);
    }
}

bool TrieBuilder::placeRoot() {
    m_trie->childrenOf(m_trie->root(), m_children);
    for (const TrieChild& child : m_children) {
        if (!m_cells.takeRoot(child.label)) return false;
        markEnd(child.label, child);
        if (!child.isLeaf()) m_cellOfKey[m_trie->keyAt(child.firstPassing)] = child.label;
    }
    return true;
}

bool TrieBuilder::placeShared(const TrieNode& node) {
    m_trie->childrenOf(node, m_children);
    m_labels.clear();
    for (const TrieChild& child : m_children) m_labels.push_back(child.label);
    const std::int64_t base = m_cells.findBase(m_trie->leadingChild(m_children).label, m_labels);
    if (base < 0) return false;
    const std::int64_t parent = m_cellOfKey[m_trie->keyAt(node.begin)];
    m_cells.setBase(parent, base);
    for (const TrieChild& child : m_children) {
        const std::int64_t index = base + child.label;
        m_cells.takeChild(index, parent);
        markEnd(index, child);
        if (child.isLeaf()) continue;
        m_cellOfKey[m_trie->keyAt(child.firstPassing)] = static_cast<std::int32_t>(index);
    }
    return true;
}

bool TrieBuilder::placeTailNode(std::uint32_t key, Step step) {
    const std::int64_t base = m_cells.findBaseOfOne(step.label);
    if (base < 0) return false;
    const std::int64_t parent = m_cellOfKey[key];
    const std::int64_t index = base + step.label;
    m_cells.setBase(parent, base);
    m_cells.takeChild(index, parent);
    m_cellOfKey[key] = static_cast<std::int32_t>(index);
    if (step.isLast()) markEnd(index, key, key);
    return true;
}

// Equal keys are in the order of their numbers.
void TrieBuilder::markEnd(std::int64_t index, const TrieChild& child) {
    if (child.begin == child.firstPassing) return;
    markEnd(index, m_trie->keyAt(child.begin), m_trie->keyAt(child.firstPassing - 1));
}

// Of equal keys, the first one added determines the number of a leaf, and the last one its feature.
void TrieBuilder::markEnd(std::int64_t index, std::uint32_t firstKey, std::uint32_t lastKey) {
    m_cells.markTerminal(index, static_cast<std::int32_t>(firstKey),
                         m_recordOffsets[m_keyStrings[lastKey]]);
}

}  // namespace Dictionary
