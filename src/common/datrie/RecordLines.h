// Helper, not installed: writes one line per record of a source, with the data that its key has so
// far.

#ifndef DICTIONARY_RECORD_LINES_H
#define DICTIONARY_RECORD_LINES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Diagnostics.h"
#include "KeyedHash.h"
#include "SourceTable.h"

namespace Dictionary {

// Used while records are being added to the table, before it is arranged. As long as keys come in
// ascending order, a record's key is either new or that of the record before. From the first key
// out of order on, a hash table has the last record of each key.
class RecordLines {
public:
    RecordLines(const SourceTable& table, MessageBlock& messages)
        : m_table(table), m_messages(messages) {}

    // Writes one line per record that was added since the last call.
    void write();

private:
    static constexpr std::uint32_t kNone = static_cast<std::uint32_t>(-1);

    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t record = kNone;
    };

    std::size_t mask() const { return m_slots.size() - 1; }
    bool isInOrder(std::uint32_t record) const;
    void index(std::uint32_t first, std::uint32_t end);
    void grow(std::size_t records);
    Slot& slotOf(std::uint32_t record, std::uint32_t hash);
    void print(std::uint32_t record);

    const SourceTable& m_table;
    MessageBlock& m_messages;
    KeyedHash m_hash;
    bool m_inOrder = true;
    std::vector<std::uint32_t> m_before;  // by record: the previous one with the same key
    std::vector<Slot> m_slots;            // a power of two of them, probed one after the other
    std::vector<std::uint32_t> m_chain;   // scratch of print
};

}  // namespace Dictionary

#endif
