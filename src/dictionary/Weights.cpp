#include "Weights.h"

#include <algorithm>
#include <limits>

namespace Dictionary {

namespace {

unsigned shiftFor(std::string_view area) {
    std::size_t smallest = std::max<std::size_t>(area.size(), 1);
    forEachRecord(area,
                  [&](std::size_t, std::size_t bytes) { smallest = std::min(smallest, bytes); });
    unsigned shift = 0;
    while (smallest >> (shift + 1) != 0) ++shift;
    return shift;
}

}  // namespace

RecordNumbers::RecordNumbers(std::string_view area)
    : m_shift(shiftFor(area)), m_blocks((area.size() >> m_shift) / kSlots + 1) {
    forEachRecord(area, [&](std::size_t offset, std::size_t) {
        const std::size_t slot = offset >> m_shift;
        m_blocks[slot / kSlots].begins |= std::uint32_t{1} << slot % kSlots;
        ++m_count;
    });
    std::uint32_t records = 0;
    for (Block& block : m_blocks) {
        block.recordsBefore = records;
        records += onesIn(block.begins);
    }
}

Weights::Weights(const ImageView& image)
    : m_numbers(image.featureArea()), m_values(m_numbers.count()) {}

void Weights::pack(std::string_view area) {
    constexpr std::size_t kMostValues = std::numeric_limits<std::uint16_t>::max() + std::size_t{1};
    std::vector<double> distinct = m_values;
    std::sort(distinct.begin(), distinct.end());
    distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
    // No record is shorter than a slot, so each begins in one that ends inside the area.
    const std::size_t slots = area.size() >> m_numbers.shift();
    const std::size_t saved = (m_values.size() - distinct.size()) * sizeof(double);
    if (distinct.size() > kMostValues || slots * sizeof(std::uint16_t) >= m_numbers.bytes() + saved)
        return;
    m_slots.resize(slots);
    fillSlots(area, distinct);
    m_shift = m_numbers.shift();
    m_values.assign(distinct.begin(), distinct.end());
    m_values.shrink_to_fit();
    m_numbers = {};
}

void Weights::fillSlots(std::string_view area, const std::vector<double>& distinct) {
    std::size_t number = 0;
    forEachRecord(area, [&](std::size_t offset, std::size_t) {
        const auto place = std::lower_bound(distinct.begin(), distinct.end(), m_values[number++]);
        m_slots[offset >> m_numbers.shift()] = static_cast<std::uint16_t>(place - distinct.begin());
    });
}

}  // namespace Dictionary
