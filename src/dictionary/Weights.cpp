#include "Weights.h"

#include <algorithm>

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
    : m_numbers(image.featureArea()), m_weights(m_numbers.count()) {}

}  // namespace Dictionary
