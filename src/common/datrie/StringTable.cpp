#include "StringTable.h"

#include <algorithm>

#include "StringSort.h"

namespace Dictionary {

namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 18;
constexpr std::size_t kFirstSlots = 64;
// The number of slots doubles when three in four are full. A smaller table has fewer cache misses,
// which outweighs longer probes.
constexpr std::size_t kFull = 3;
constexpr std::size_t kFullOf = 4;

}  // namespace

char* ByteArena::allocate(std::size_t bytes) {
    if (m_free == nullptr || bytes > m_left) {
        m_left = std::max(bytes, kBlockBytes);
        m_blocks.push_back(std::unique_ptr<char[]>(new char[m_left]));
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
    const std::uint32_t hash = m_hash(text);
    const std::uint32_t known = find(text, hash);
    if (known != kNone) return known;
    if (m_entries.size() * kFullOf >= m_slots.size() * kFull) grow();
    const std::uint32_t number = size();
    const std::string_view kept = m_arena.keep(text);
    m_entries.push_back({kept.data(), static_cast<std::uint32_t>(kept.size()), hash});
    fill(hash, number);
    return number;
}

std::uint32_t StringTable::find(std::string_view text, std::uint32_t hash) const {
    if (m_slots.empty()) return kNone;
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t i = hash & mask; m_slots[i].entry != 0; i = (i + 1) & mask) {
        const std::uint32_t number = m_slots[i].entry - 1;
        if (m_slots[i].hash == hash && (*this)[number] == text) return number;
    }
    return kNone;
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
    const std::vector<SortEntry> strings =
        sortedStrings(size(), [this](std::uint32_t number) { return (*this)[number]; });
    std::vector<std::uint32_t> order(strings.size());
    std::transform(strings.begin(), strings.end(), order.begin(),
                   [](const SortEntry& string) { return string.number; });
    return order;
}

}  // namespace Dictionary
