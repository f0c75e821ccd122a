#include "StringTable.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace Dictionary {

namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 18;
constexpr std::size_t kFirstSlots = 64;
// Slots double when three in four are full: less memory to miss outweighs the longer probes.
constexpr std::size_t kFull = 3;
constexpr std::size_t kFullOf = 4;

// The first eight bytes, such that unsigned order is bytewise order.
std::uint64_t leadingBytes(std::string_view text) {
    std::uint64_t lead = 0;
    std::memcpy(&lead, text.data(), std::min(text.size(), sizeof lead));
    return __builtin_bswap64(lead);
}

// A string's number with its first bytes.
struct Led {
    std::uint64_t lead;
    std::uint32_t number;
};

constexpr int kDigitBits = 8;
constexpr int kTopShift = 64 - kDigitBits;

// Radix sort by the byte of the lead at `shift` and those after it; few strings, and those of
// equal leads, are left to a sort by `before`.
template <class Before>
void sortByLead(Led* strings, Led* scratch, std::size_t count, int shift, const Before& before) {
    constexpr std::size_t kFew = 64;
    constexpr std::size_t kDigits = std::size_t{1} << kDigitBits;
    if (count <= kFew || shift < 0) return std::sort(strings, strings + count, before);

    const auto digit = [shift](const Led& string) { return string.lead >> shift & (kDigits - 1); };
    std::size_t ends[kDigits] = {};
    for (std::size_t i = 0; i < count; ++i) ++ends[digit(strings[i])];
    for (std::size_t i = 1; i < kDigits; ++i) ends[i] += ends[i - 1];
    std::copy_n(strings, count, scratch);
    std::size_t starts[kDigits];
    std::copy_n(ends, kDigits, starts);
    for (std::size_t i = count; i > 0; --i) {
        strings[--starts[digit(scratch[i - 1])]] = scratch[i - 1];
    }
    for (std::size_t i = 0; i < kDigits; ++i) {
        sortByLead(strings + starts[i], scratch, ends[i] - starts[i], shift - kDigitBits, before);
    }
}

}  // namespace

char* ByteArena::allocate(std::size_t bytes) {
    constexpr std::size_t kAlignment = alignof(void*);
    bytes = (bytes + kAlignment - 1) / kAlignment * kAlignment;
    if (m_free == nullptr || bytes > m_left) {
        m_left = std::max(bytes, kBlockBytes);
        m_blocks.emplace_back(new char[m_left]);
        m_free = m_blocks.back().get();
    }
    char* room = m_free;
    m_free += bytes;
    m_left -= bytes;
    return room;
}

std::string_view ByteArena::keep(std::string_view text) {
    char* room = allocate(text.size());
    std::copy(text.begin(), text.end(), room);
    return {room, text.size()};
}

std::uint32_t StringTable::add(std::string_view text) {
    if (m_entries.size() * kFullOf >= m_slots.size() * kFull) grow();
    const auto hash = static_cast<std::uint32_t>(std::hash<std::string_view>()(text));
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t i = hash & mask; m_slots[i].entry != 0; i = (i + 1) & mask) {
        const std::uint32_t number = m_slots[i].entry - 1;
        if (m_slots[i].hash == hash && (*this)[number] == text) return number;
    }
    const std::uint32_t number = size();
    const std::string_view kept = m_arena.keep(text);
    m_entries.push_back({kept.data(), static_cast<std::uint32_t>(kept.size()), hash});
    fill(hash, number);
    return number;
}

void StringTable::fill(std::uint32_t hash, std::uint32_t number) {
    const std::size_t mask = m_slots.size() - 1;
    std::size_t i = hash & mask;
    while (m_slots[i].entry != 0) i = (i + 1) & mask;
    m_slots[i] = {hash, number + 1};
}

void StringTable::grow() {
    m_slots.assign(std::max(kFirstSlots, m_slots.size() * 2), {0, 0});
    for (std::uint32_t number = 0; number < size(); ++number) fill(m_entries[number].hash, number);
}

std::vector<std::uint32_t> StringTable::sorted() const {
    std::vector<Led> strings;
    strings.reserve(m_entries.size());
    for (std::uint32_t number = 0; number < size(); ++number) {
        strings.push_back({leadingBytes((*this)[number]), number});
    }
    const auto before = [this](const Led& left, const Led& right) {
        if (left.lead != right.lead) return left.lead < right.lead;
        return (*this)[left.number] < (*this)[right.number];
    };
    if (!std::is_sorted(strings.begin(), strings.end(), before)) {
        std::vector<Led> scratch(strings.size());
        sortByLead(strings.data(), scratch.data(), strings.size(), kTopShift, before);
    }
    std::vector<std::uint32_t> order(strings.size());
    std::transform(strings.begin(), strings.end(), order.begin(),
                   [](const Led& string) { return string.number; });
    return order;
}

}  // namespace Dictionary
