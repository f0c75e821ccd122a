#include "RecordLines.h"

#include <algorithm>

namespace Dictionary {

void RecordLines::write() {
    const auto first = static_cast<std::uint32_t>(m_before.size());
    const std::uint32_t end = m_table.recordCount();
    m_before.resize(end, kNone);
    std::uint32_t record = first;
    for (; m_inOrder && record < end; ++record) {
        m_inOrder = isInOrder(record);
        if (!m_inOrder) break;
        if (record > 0 && m_table.key(record) == m_table.key(record - 1)) {
            m_before[record] = record - 1;
        }
    }
    // At the first record out of order, all records so far go into the hash table.
    if (!m_inOrder) index(m_slots.empty() ? 0 : first, end);
    for (record = first; record < end; ++record) print(record);
}

bool RecordLines::isInOrder(std::uint32_t record) const {
    return record == 0 || m_table.key(record - 1) <= m_table.key(record);
}

// Records are spread over all slots. Prefetching lets their cache misses overlap.
void RecordLines::index(std::uint32_t first, std::uint32_t end) {
    constexpr std::size_t kAhead = 16;
    grow(end);
    std::vector<std::uint32_t> hashes;
    hashes.reserve(end - first);
    for (std::uint32_t record = first; record < end; ++record) {
        hashes.push_back(m_hash(m_table.key(record)));
    }
    for (std::size_t i = 0; i < hashes.size(); ++i) {
        if (i + kAhead < hashes.size())
            __builtin_prefetch(&m_slots[hashes[i + kAhead] & mask()], 1);
        const std::uint32_t record = first + static_cast<std::uint32_t>(i);
        Slot& slot = slotOf(record, hashes[i]);
        m_before[record] = slot.record;
        slot = {hashes[i], record};
    }
}

// At most half of the slots are taken.
void RecordLines::grow(std::size_t records) {
    std::size_t count = std::max<std::size_t>(m_slots.size(), 1);
    while (count < 2 * records) count *= 2;
    if (count == m_slots.size()) return;
    std::vector<Slot> slots(count);
    slots.swap(m_slots);
    for (const Slot& slot : slots) {
        if (slot.record != kNone) slotOf(slot.record, slot.hash) = slot;
    }
}

// The slot of a record's key; it is empty if no earlier record has that key.
RecordLines::Slot& RecordLines::slotOf(std::uint32_t record, std::uint32_t hash) {
    for (std::size_t i = hash & mask();; i = (i + 1) & mask()) {
        Slot& slot = m_slots[i];
        if (slot.record == kNone) return slot;
        if (slot.hash == hash && m_table.key(slot.record) == m_table.key(record)) return slot;
    }
}

void RecordLines::print(std::uint32_t record) {
    m_chain.clear();
    for (; record != kNone; record = m_before[record]) m_chain.push_back(record);
    while (m_chain.size() > 1) {
        m_messages << m_table.data(m_chain.back()) << ";";
        m_chain.pop_back();
    }
    m_messages << m_table.data(m_chain.back()) << "\n";
}

}  // namespace Dictionary
