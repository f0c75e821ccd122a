#include "ColumnList.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <new>

namespace Dictionary {

namespace {

constexpr std::uint32_t* DictionaryColumns::*kColumns[] = {
    &DictionaryColumns::text, &DictionaryColumns::start, &DictionaryColumns::end,
    &DictionaryColumns::dataNumber, &DictionaryColumns::image};
constexpr std::size_t kHugePage = std::size_t{2} << 20;

// Memory from malloc. If it is large, asks the system for huge pages: getting small ones takes a
// third of the time of the search that fills them.
std::uint32_t* roomFor(std::size_t numbers) {
    const std::size_t size = numbers * sizeof(std::uint32_t);
    if (size < 2 * kHugePage) return static_cast<std::uint32_t*>(std::malloc(size));
    const std::size_t whole = (size + kHugePage - 1) / kHugePage * kHugePage;
    void* const memory = std::aligned_alloc(kHugePage, whole);
    if (memory != nullptr) madvise(memory, whole, MADV_HUGEPAGE);
    return static_cast<std::uint32_t*>(memory);
}

}  // namespace

void freeColumns(DictionaryColumns& columns) {
    std::free(columns.text);
    columns = {};
}

// Room for as many entries as must be expected after the texts so far, but for at least twice as
// many as there are. Memory that is never written to costs nothing.
std::size_t ColumnList::grownCapacity() const {
    constexpr std::size_t kLeast = 16, kTelling = 4096, kMostGrowth = 64;
    constexpr double kMargin = 1.125;
    const std::size_t count = std::max(m_columns.count, kLeast / 2);
    if (m_entriesPassed < kTelling) return 2 * count;
    const double entriesPerByte =
        static_cast<double>(m_entriesPassed) / static_cast<double>(m_bytesPassed);
    const double expected = kMargin * entriesPerByte * static_cast<double>(m_bytes);
    const auto least = static_cast<double>(2 * count);
    const auto most = static_cast<double>(kMostGrowth * count);
    return static_cast<std::size_t>(std::clamp(expected, least, most));
}

void ColumnList::grow() {
    const std::size_t capacity = grownCapacity();
    std::uint32_t* place = roomFor(std::size(kColumns) * capacity);
    if (place == nullptr) throw std::bad_alloc();
    std::uint32_t* const before = m_columns.text;
    for (const auto column : kColumns) {
        std::copy_n(m_columns.*column, m_columns.count, place);
        m_columns.*column = place;
        place += capacity;
    }
    m_columns.capacity = capacity;
    std::free(before);
}

}  // namespace Dictionary
