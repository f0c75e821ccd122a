// Helper, not installed: what the keys of an image weigh in a segmentation.

#ifndef DICTIONARY_WEIGHTS_H
#define DICTIONARY_WEIGHTS_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ImageFormat.h"

namespace Dictionary {

// Numbers the records of a feature area from 0, in their order. Takes two bits per slot. The size
// of a slot is a power of two, the largest that no record is smaller than.
class RecordNumbers {
public:
    RecordNumbers() = default;
    explicit RecordNumbers(std::string_view area);

    std::size_t count() const { return m_count; }

    // A slot has 2 to this power bytes. No two records begin in the same slot.
    unsigned shift() const { return m_shift; }
    std::size_t bytes() const { return m_blocks.size() * sizeof(Block); }

    // The number of the record that begins at byte `offset` of the area.
    std::size_t of(std::int32_t offset) const {
        const std::uint32_t slot = static_cast<std::uint32_t>(offset) >> m_shift;
        const Block& block = m_blocks[slot / kSlots];
        const std::uint32_t before = (std::uint32_t{1} << slot % kSlots) - 1;
        return block.recordsBefore + onesIn(block.begins & before);
    }

private:
    struct Block {
        std::uint32_t begins;  // one bit per slot: a record begins there
        std::uint32_t recordsBefore;
    };
    static constexpr std::uint32_t kSlots = 32;

    // Counts in parallel, as the baseline processor has no instruction for it.
    static std::uint32_t onesIn(std::uint32_t bits) {
        bits -= bits >> 1 & 0x55555555u;
        bits = (bits & 0x33333333u) + (bits >> 2 & 0x33333333u);
        return ((bits + (bits >> 4)) & 0x0F0F0F0Fu) * 0x01010101u >> 24;
    }

    unsigned m_shift = 0;
    std::size_t m_count = 0;
    std::vector<Block> m_blocks;
};

// One weight per data text of an image. The sum of the weights on a path is its score. The path
// with the greatest score is the cheapest one.
class Weights {
public:
    // All weights are 0.
    explicit Weights(const ImageView& image);

    double of(std::int32_t feature) const {
        if (m_slots.empty()) return m_values[m_numbers.of(feature)];
        return m_values[m_slots[static_cast<std::uint32_t>(feature) >> m_shift]];
    }

    // The values are by number of the record, until they are packed.
    const RecordNumbers& numbers() const { return m_numbers; }
    std::vector<double>& values() { return m_values; }

    // Keeps each distinct weight once if that takes less memory. Weights are found faster then.
    void pack(std::string_view area);

private:
    void fillSlots(std::string_view area, const std::vector<double>& distinct);

    RecordNumbers m_numbers;
    std::vector<double> m_values;
    // When packed: the number of the value, by slot of the record; see RecordNumbers.
    std::vector<std::uint16_t> m_slots;
    unsigned m_shift = 0;
};

}  // namespace Dictionary

#endif
