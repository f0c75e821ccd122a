#include "FreeCells.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "FirstFit.h"

namespace Dictionary {

namespace {

constexpr std::int64_t kByteBits = 8;
constexpr std::int64_t kWordBits = 64;
constexpr std::uint8_t kAllFree = 0xFF;

// Before a whole set, its first offsets are searched for: kFirstFront of them, then kFrontGrowth
// times as many each time.
constexpr std::size_t kFirstFront = 8;
constexpr std::size_t kFrontGrowth = 8;

// The result of a search shorter than this is not remembered: searching again costs little.
constexpr std::int64_t kFarOff = 4096;

}  // namespace

FreeCells::FreeCells(std::int64_t reserved) : m_end(reserved), m_covered(0) {
    cover(reserved);
    for (std::int64_t shift = 0; shift < kCopies && shift < reserved; ++shift) {
        const auto taken = static_cast<std::size_t>(reserved - shift);
        std::vector<std::uint8_t>& copy = m_copies[static_cast<std::size_t>(shift)];
        std::fill_n(copy.begin(), taken / kByteBits, std::uint8_t{0});
        copy[taken / kByteBits] = static_cast<std::uint8_t>(kAllFree << taken % kByteBits);
    }
}

void FreeCells::cover(std::int64_t cell) {
    if (cell < m_covered) return;
    m_covered = std::max(cell + 1, 2 * m_covered);
    const std::size_t bytes = static_cast<std::size_t>(m_covered / kByteBits) + 1;
    for (unsigned shift = 0; shift < m_copiesKept; ++shift) {
        m_copies[shift].resize(bytes + kFirstFitSlack, kAllFree);
    }
}

void FreeCells::take(std::int64_t cell) {
    cover(cell);
    m_end = std::max(m_end, cell + 1);
    for (unsigned shift = 0; shift < m_copiesKept && shift <= cell; ++shift) {
        const auto bit = static_cast<std::size_t>(cell - shift);
        std::uint8_t& byte = m_copies[shift][bit / kByteBits];
        byte = static_cast<std::uint8_t>(byte & ~(1u << bit % kByteBits));
    }
}

std::int64_t FreeCells::firstFrom(std::int64_t cell) const {
    while (cell < m_end) {
        std::uint64_t word;
        const std::int64_t start = cell / kByteBits * kByteBits;
        std::memcpy(&word, m_copies[0].data() + start / kByteBits, sizeof word);
        word >>= cell - start;
        if (word != 0) return cell + __builtin_ctzll(word);
        cell = start + kWordBits;
    }
    return cell;
}

const std::uint8_t* FreeCells::bitsFrom(std::int64_t cell) const {
    const auto index = static_cast<std::size_t>(cell);
    return m_copies[index % kCopies].data() + index / kCopies;
}

std::int64_t FreeCells::firstFit(std::int64_t from, const std::vector<std::int64_t>& offsets) {
    if (m_copiesKept < kCopies) restoreCopies();
    // Different sets may begin with the same offsets.
    for (std::size_t front = kFirstFront; kFrontGrowth * front <= offsets.size();
         front *= kFrontGrowth) {
        from = firstFit(from, offsets, front);
    }
    return firstFit(from, offsets, offsets.size());
}

// The same for the first `count` offsets.
std::int64_t FreeCells::firstFit(std::int64_t from, const std::vector<std::int64_t>& offsets,
                                 std::size_t count) {
    const std::string_view pattern(reinterpret_cast<const char*>(offsets.data()),
                                   count * sizeof offsets[0]);
    std::uint32_t known = m_patterns.find(pattern);
    if (known != StringTable::kNone) from = std::max(from, m_bounds[known]);
    const std::int64_t position = search(from, offsets, count);
    if (known == StringTable::kNone) {
        if (position - from < kFarOff) return position;
        known = m_patterns.add(pattern);
        m_bounds.push_back(0);
    }
    m_bounds[known] = position;
    return position;
}

std::int64_t FreeCells::search(std::int64_t from, const std::vector<std::int64_t>& offsets,
                               std::size_t count) {
    // At the latest, everything fits after the last cell taken.
    std::int64_t least = 0;
    std::int64_t most = 0;
    for (std::size_t i = 0; i < count; ++i) {
        least = std::min(least, offsets[i]);
        most = std::max(most, offsets[i]);
    }
    cover(std::max(from, m_end - least) + most);

    m_streams.assign(1, bitsFrom(from));
    for (std::size_t i = 0; i < count; ++i) m_streams.push_back(bitsFrom(from + offsets[i]));
    return from + Dictionary::firstFit(m_streams);
}

void FreeCells::dropCopies() {
    for (unsigned shift = 1; shift < kCopies; ++shift) {
        std::vector<std::uint8_t>().swap(m_copies[shift]);
    }
    m_copiesKept = 1;
}

void FreeCells::restoreCopies() {
    const std::vector<std::uint8_t>& cells = m_copies[0];
    for (unsigned shift = m_copiesKept; shift < kCopies; ++shift) {
        std::vector<std::uint8_t>& copy = m_copies[shift];
        copy.resize(cells.size(), kAllFree);
        for (std::size_t i = 0; i + 1 < cells.size(); ++i) {
            const unsigned pair = cells[i] | static_cast<unsigned>(cells[i + 1]) << kByteBits;
            copy[i] = static_cast<std::uint8_t>(pair >> shift);
        }
    }
    m_copiesKept = kCopies;
}

}  // namespace Dictionary
