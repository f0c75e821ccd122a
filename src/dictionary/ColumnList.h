// Helper, not installed: matches in columns that grow.

#ifndef DICTIONARY_COLUMN_LIST_H
#define DICTIONARY_COLUMN_LIST_H

#include <cstddef>
#include <cstdint>

#include "Dictionary.h"

namespace Dictionary {

// One entry of each column.
struct ColumnEntry {
    std::uint32_t text;
    std::uint32_t start;
    std::uint32_t end;
    std::uint32_t dataNumber;
    std::uint32_t image;
};

// The caller's columns, emptied. They are parts of one block of memory, in which `text` is first.
class ColumnList {
public:
    explicit ColumnList(DictionaryColumns& columns) : m_columns(columns) { m_columns.count = 0; }

    // Says how many bytes all texts have together.
    void expect(std::size_t bytes) { m_bytes = bytes; }

    void add(const ColumnEntry& entry) {
        if (m_columns.count == m_columns.capacity) grow();
        const std::size_t place = m_columns.count++;
        m_columns.text[place] = entry.text;
        m_columns.start[place] = entry.start;
        m_columns.end[place] = entry.end;
        m_columns.dataNumber[place] = entry.dataNumber;
        m_columns.image[place] = entry.image;
    }

    // Must be called after the last entry of a text.
    void passText(std::size_t bytes) {
        m_bytesPassed += bytes;
        m_entriesPassed = m_columns.count;
    }

private:
    void grow();
    std::size_t grownCapacity() const;

    DictionaryColumns& m_columns;
    std::size_t m_bytes = 0;        // of all texts
    std::size_t m_bytesPassed = 0;  // of those that are done
    std::size_t m_entriesPassed = 0;
};

void freeColumns(DictionaryColumns& columns);

}  // namespace Dictionary

#endif
