#include "CellArray.h"

#include <algorithm>

namespace Dictionary {

namespace {

constexpr std::int64_t kGrowthFactor = 2;
constexpr std::int64_t kNoBase = -1;
// An image is written with one more cell than are in use.
constexpr std::int64_t kMaxCells = kMaxImageBytes / kCellBytes - 1;

// Four times the smallest power of two that holds the cells of the root's children.
std::int64_t firstCapacity(std::int64_t rootCells) {
    constexpr std::int64_t kSpread = 4;
    if (rootCells < 2) return kSpread;
    std::int64_t power = 2;
    while (power < rootCells) power *= 2;
    return kSpread * power;
}

}  // namespace

CellArray::CellArray(std::int32_t alphabetSize)
    : m_alphabetSize(alphabetSize),
      m_capacity(firstCapacity(firstShared())),
      m_hint(firstShared()),
      m_limit(kMaxCells),
      m_free(m_hint) {}

void CellArray::clear() {
    m_blocks.clear();
    m_free = FreeCells(firstShared());
    m_limit = kMaxCells;
}

void CellArray::reserve(std::int64_t size) {
    while (m_capacity < size) m_capacity *= kGrowthFactor;
}

std::int64_t CellArray::firstFreeFrom(std::int64_t index) {
    while (index < storedCells() && !isFree(index)) ++index;
    reserve(index + 1);
    return index;
}

Cell& CellArray::use(std::int64_t index) {
    reserve(index + 1);
    m_highest = std::max(m_highest, index);
    while (index >= storedCells()) {
        m_blocks.push_back(std::unique_ptr<Cell[]>(new Cell[kBlockCells]));
        std::fill_n(m_blocks.back().get(), kBlockCells, kFreeCell);
    }
    return storedCell(index);
}

bool CellArray::takeRoot(std::int32_t code) {
    if (code < 0 || code > m_alphabetSize || code >= m_limit) return false;
    use(code).check = kRootCheck;
    return true;
}

void CellArray::takeChild(std::int64_t index, std::int64_t parent) {
    use(index).check = static_cast<std::int32_t>(parent);
    m_free.take(index);
}

void CellArray::markTerminal(std::int64_t index, std::int32_t smallestKey, std::int32_t feature) {
    Cell& cell = use(index);
    if (cell.base > 0) cell.base = -cell.base;
    if (cell.base == 0) cell.base = -smallestKey;
    cell.feature = feature;
}

void CellArray::setBase(std::int64_t index, std::int64_t base) {
    Cell& cell = use(index);
    cell.base = static_cast<std::int32_t>(endsKey(cell) ? -base : base);
}

void CellArray::advanceHint() {
    m_hint = m_free.firstFrom(m_hint);
    reserve(m_hint + 1);
}

std::int64_t CellArray::findBaseOfOne(std::int32_t label) {
    advanceHint();
    return m_hint < label || m_hint >= m_limit ? kNoBase : m_hint - label;
}

std::int64_t CellArray::findBase(std::int32_t leading, const std::vector<std::int32_t>& labels) {
    if (labels.size() == 1) return findBaseOfOne(leading);

    const auto [least, most] = std::minmax_element(labels.begin(), labels.end());
    const std::int64_t reach = std::int64_t{*most} - leading;
    advanceHint();
    if (m_hint < leading || m_hint + reach >= m_limit) return kNoBase;

    // All children must be above the reserved cells, so no position before this one fits.
    const std::int64_t from = std::max(m_hint, firstShared() + leading - *least);
    m_offsets.clear();
    for (const std::int32_t label : labels) {
        if (label != leading) m_offsets.push_back(std::int64_t{label} - leading);
    }
    const std::int64_t position = m_free.firstFit(from, m_offsets);
    if (position + reach >= m_limit) return kNoBase;
    reserve(position + reach + 1);
    return position - leading;
}

std::int64_t CellArray::countOneMore() {
    if (m_highest <= m_limit) ++m_highest;
    return m_highest;
}

}  // namespace Dictionary
