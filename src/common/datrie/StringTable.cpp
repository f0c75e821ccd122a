#include "StringTable.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

namespace Dictionary {

namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 18;
constexpr std::size_t kFirstSlots = 64;

// The first eight bytes, such that unsigned order is bytewise order.
std::uint64_t leadingBytes(std::string_view text) {
    std::uint64_t lead = 0;
    std::memcpy(&lead, text.data(), std::min(text.size(), sizeof lead));
    return __builtin_bswap64(lead);
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
    if (m_entries.size() * 2 >= m_slots.size()) grow();
    const std::size_t hash = std::hash<std::string_view>()(text);
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = hash & mask;
    for (; m_slots[slot] != 0; slot = (slot + 1) & mask) {
        const Entry& entry = m_entries[m_slots[slot] - 1];
        if (entry.hash == hash && entry.text == text) return m_slots[slot] - 1;
    }
    m_entries.push_back({m_arena.keep(text), hash});
    m_slots[slot] = size();
    return size() - 1;
}

void StringTable::grow() {
    m_slots.assign(std::max(kFirstSlots, m_slots.size() * 2), 0);
    const std::size_t mask = m_slots.size() - 1;
    std::uint32_t number = 0;
    for (const Entry& entry : m_entries) {
        std::size_t slot = entry.hash & mask;
        while (m_slots[slot] != 0) slot = (slot + 1) & mask;
        m_slots[slot] = ++number;
    }
}

std::vector<std::uint32_t> StringTable::sorted() const {
    std::vector<std::pair<std::uint64_t, std::uint32_t> > byLead;
    byLead.reserve(m_entries.size());
    for (std::uint32_t number = 0; number < size(); ++number) {
        byLead.emplace_back(leadingBytes((*this)[number]), number);
    }
    const auto before = [this](const auto& left, const auto& right) {
        if (left.first != right.first) return left.first < right.first;
        return (*this)[left.second] < (*this)[right.second];
    };
    if (!std::is_sorted(byLead.begin(), byLead.end(), before)) {
        std::sort(byLead.begin(), byLead.end(), before);
    }
    std::vector<std::uint32_t> order(byLead.size());
    std::transform(byLead.begin(), byLead.end(), order.begin(),
                   [](const auto& entry) { return entry.second; });
    return order;
}

}  // namespace Dictionary
