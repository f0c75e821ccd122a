// Helper, not installed: gathers the keys of a source with their data.

#ifndef DICTIONARY_SOURCE_TABLE_H
#define DICTIONARY_SOURCE_TABLE_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "StringSort.h"
#include "StringTable.h"

namespace Dictionary {

// A key as it goes into the trie. If a key of a source is just a backslash and an n, it becomes the
// newline character.
inline std::string_view trieKeyOf(std::string_view key) {
    return key == "\\n" ? "\n" : key;
}

// All records are added first, then arranged once, then read. Records are numbered from 0 in source
// order. A key is identified by the number of its last record, which has all its data.
class SourceTable {
public:
    // Adds a record: its key and its data fields. In the data, each field is followed by a tab.
    void add(const std::vector<std::string_view>& fields);

    // Finds the records of each key and the order of the keys.
    void arrange();

    std::uint32_t recordCount() const { return static_cast<std::uint32_t>(m_records.size()); }
    std::size_t keyBytes() const { return m_keyBytes; }

    std::size_t keyCount() const { return m_keys.size(); }

    // Calls `visit(key)` for the keys in bytewise order. Their records are far apart in memory;
    // prefetching lets their cache misses overlap.
    template <class Visit>
    void forEachKey(Visit visit) const {
        constexpr std::size_t kRecordAhead = 32;
        constexpr std::size_t kTextAhead = 16;
        for (std::size_t i = 0; i < m_keys.size(); ++i) {
            if (i + kRecordAhead < m_keys.size()) {
                __builtin_prefetch(&m_records[m_keys[i + kRecordAhead]]);
                __builtin_prefetch(m_records[m_keys[i + kTextAhead]].text);
            }
            visit(m_keys[i]);
        }
    }

    std::string_view key(std::uint32_t record) const {
        return {m_records[record].text, m_records[record].keySize};
    }

    std::string_view trieKey(std::uint32_t record) const { return trieKeyOf(key(record)); }

    // Before arrange(), the data of this record alone. After it, the data of all records of the
    // same key up to this one, joined with ";". Valid as long as the table.
    std::string_view data(std::uint32_t record) const {
        return {m_records[record].text + m_records[record].keySize, m_records[record].dataSize};
    }

private:
    // `text` is the key, followed by the data.
    struct Record {
        const char* text;
        std::uint32_t keySize;
        std::uint32_t dataSize;
    };

    void join(const SortEntry* first, const SortEntry* end);

    ByteArena m_arena;
    std::vector<Record> m_records;
    std::size_t m_keyBytes = 0;  // of all records together
    std::vector<std::uint32_t> m_keys;
};

}  // namespace Dictionary

#endif
