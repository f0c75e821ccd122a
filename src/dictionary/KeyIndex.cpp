#include "KeyIndex.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "Utf8Decoder.h"
#include "Utf8Encoder.h"

namespace Dictionary {

namespace {

constexpr std::uint32_t kRoot = 0;  // its children are kept as those of the header
constexpr std::int32_t kSurrogatesEnd = 0xE000;
constexpr std::uint32_t kNowhere = std::numeric_limits<std::uint32_t>::max();

// A node with everything that the listing needs, so that few cells are read.
struct Node {
    std::uint32_t cell;
    std::int32_t feature;
    std::uint32_t children;  // number of the first
    std::uint32_t childrenEnd;
    std::uint16_t label;  // 0 if it has no possible one
    bool isKey;
};

// The nodes of a trie, sorted by their parents' cells and then by their labels, in one counting
// sort.
class Nodes {
public:
    explicit Nodes(const CellView& cells);

    Node& operator[](std::uint32_t number) { return m_nodes[number]; }
    Node root() const { return {kRoot, kNoFeature, 0, m_rootChildren, 0, false}; }

private:
    template <class Use>
    void forEachChild(Use use);
    std::uint32_t parentOf(std::uint32_t cell) const;
    Node nodeOf(std::uint32_t cell, std::uint32_t parent) const;

    static constexpr std::uint32_t kAhead = 32;

    const CellView& m_cells;
    std::vector<std::uint32_t> m_starts;  // by cell: where its children begin
    std::vector<Node> m_nodes;
    std::uint32_t m_rootChildren = 0;
};

Nodes::Nodes(const CellView& cells) : m_cells(cells), m_starts(cells.firstLimit() + 2) {
    forEachChild([this](std::uint32_t, std::uint32_t parent) { ++m_starts[parent + 1]; });
    std::uint32_t sum = 0;
    for (std::uint32_t& start : m_starts) sum += std::exchange(start, sum);
    m_nodes.resize(sum);
    // A start moves on with each child that comes. In the end it is the start for the next cell.
    forEachChild([this](std::uint32_t cell, std::uint32_t parent) {
        m_nodes[m_starts[parent + 1]++] = nodeOf(cell, parent);
    });
    for (std::uint32_t i = 0; i < sum; ++i) {
        __builtin_prefetch(&m_starts[m_nodes[std::min(i + kAhead, sum - 1)].cell]);
        m_nodes[i].children = m_starts[m_nodes[i].cell];
        m_nodes[i].childrenEnd = m_starts[m_nodes[i].cell + 1];
    }
    m_rootChildren = m_starts[kRoot + 1];
    std::vector<std::uint32_t>().swap(m_starts);
}

// Calls use(cell, parent) for every cell that has a parent, from the first cell to the last.
template <class Use>
void Nodes::forEachChild(Use use) {
    const std::uint32_t count = m_cells.firstLimit();
    for (std::uint32_t cell = 1; cell < count; ++cell) {
        const std::uint32_t later = parentOf(std::min(cell + kAhead, count - 1));
        if (later != kNowhere) {
            __builtin_prefetch(&m_starts[later + 1], 1);
            __builtin_prefetch(m_cells.bytes() + std::size_t{later} * kCellBytes);
        }
        const std::uint32_t parent = parentOf(cell);
        if (parent != kNowhere) use(cell, parent);
    }
}

// kNowhere if the cell has no possible parent.
std::uint32_t Nodes::parentOf(std::uint32_t cell) const {
    const std::int32_t check = m_cells.checkOf(cell);
    if (check == kRootCheck) return cell < kBmpEnd ? kRoot : kNowhere;
    const auto parent = static_cast<std::uint32_t>(check);
    return parent != kRoot && parent < m_cells.firstLimit() ? parent : kNowhere;
}

Node Nodes::nodeOf(std::uint32_t cell, std::uint32_t parent) const {
    const std::int64_t base = parent == kRoot ? 0 : childIndex(m_cells[parent], 0);
    const std::int64_t label = cell - base;
    const bool isLabel = label > 0 && label < kBmpEnd;
    const Cell here = m_cells[cell];
    return {cell,         here.feature, 0, 0, static_cast<std::uint16_t>(isLabel ? label : 0),
            endsKey(here)};
}

// Returns where the written length ends.
char* writeLength(char* place, std::size_t length) {
    const auto value = static_cast<std::uint32_t>(length);
    if (value < kLongLength) {
        *place++ = static_cast<char>(value);
        return place;
    }
    *place++ = static_cast<char>(kLongLength);
    std::memcpy(place, &value, sizeof value);
    return place + sizeof value;
}

}  // namespace

// Goes through the trie, each node before its children, and lists the keys.
class KeyLister {
public:
    KeyLister(const ImageView& image, KeyIndex& index) : m_nodes(image.cells()), m_index(index) {
        m_index.m_places.assign(image.cells().firstLimit() + 1, kNowhere);
    }

    void run();

private:
    // A node on the way from the root to where the lister is.
    struct Step {
        std::uint32_t cell;
        std::uint32_t child;  // number of the next one
        std::uint32_t childrenEnd;
        std::int32_t high;  // the node's label if it is a high surrogate, else 0
        std::size_t bytes;  // of the text before the node's label
    };

    void enter(const Node& node);
    void leave();
    void addStep(const Node& node, std::int32_t high);
    void list(std::int32_t feature);

    Nodes m_nodes;
    KeyIndex& m_index;
    std::vector<Step> m_path;
    std::string m_text;
    std::size_t m_shared = 0;  // bytes that the text shares with the last key listed
};

void KeyLister::run() {
    addStep(m_nodes.root(), 0);
    while (!m_path.empty()) {
        Step& step = m_path.back();
        if (step.child == step.childrenEnd) {
            leave();
        } else {
            enter(m_nodes[step.child++]);
        }
    }
    m_index.m_entries.append(kEntrySlack, '\0');
    m_index.m_entries.shrink_to_fit();
}

// Skips nodes whose labels cannot come here. There is no key below them.
void KeyLister::enter(const Node& node) {
    const std::int32_t high = m_path.back().high;
    if (node.label == 0 || isLowSurrogate(node.label) != (high != 0)) return;
    const bool isHigh = isHighSurrogate(node.label);
    m_index.m_places[node.cell] = static_cast<std::uint32_t>(m_index.m_entries.size());
    addStep(node, isHigh ? node.label : 0);
    if (isHigh) return;
    appendUtf8(high == 0 ? node.label : codeOfPair(high, node.label), m_text);
    if (node.isKey) list(node.feature);
}

// Characters above U+FFFF come last, so the surrogates that they begin with are moved to the end.
void KeyLister::addStep(const Node& node, std::int32_t high) {
    m_path.push_back({node.cell, node.children, node.childrenEnd, high, m_text.size()});
    if (node.children == node.childrenEnd) return;
    Node* const first = &m_nodes[node.children];
    Node* const end = first + (node.childrenEnd - node.children);
    if (end[-1].label < kSurrogatesEnd) return;
    const auto from = [=](std::int32_t label) {
        return std::find_if(first, end, [=](const Node& child) { return child.label >= label; });
    };
    std::rotate(from(kHighSurrogates), from(kSurrogatesEnd), end);
}

void KeyLister::leave() {
    const Step& step = m_path.back();
    m_text.resize(step.bytes);
    m_shared = std::min(m_shared, step.bytes);
    std::uint32_t& place = m_index.m_places[step.cell];
    if (place == m_index.m_entries.size()) place = kNowhere;
    m_path.pop_back();
}

void KeyLister::list(std::int32_t feature) {
    char lengths[2 * kMostLengthBytes];
    char* const end = writeLength(writeLength(lengths, m_shared), m_text.size() - m_shared);
    m_index.m_entries.append(reinterpret_cast<const char*>(&feature), sizeof feature)
        .append(lengths, end)
        .append(m_text, m_shared);
    m_shared = m_text.size();
    m_index.m_longestKey = std::max(m_index.m_longestKey, m_text.size());
    ++m_index.m_keyCount;
}

KeyIndex::KeyIndex(const ImageView& image) {
    KeyLister(image, *this).run();
}

const char* KeyIndex::entriesFrom(std::uint32_t cell) const {
    const std::uint32_t place = m_places[cell];
    return place == kNowhere ? entriesEnd() : m_entries.data() + place;
}

}  // namespace Dictionary
