// Helper, not installed: matches in columns that grow.

#ifndef DICTIONARY_COLUMN_LIST_H
#define DICTIONARY_COLUMN_LIST_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "Dictionary.h"
#include "MatchList.h"

namespace Dictionary {

// An entry of all columns.
struct ColumnEntry {
    std::uint32_t text;
    std::uint32_t start;
    std::uint32_t end;
    std::uint32_t dataNumber;
    std::uint32_t image;
};

// The caller's columns, emptied.
class ColumnList {
public:
    explicit ColumnList(DictionaryColumns& columns) : m_columns(columns) { m_columns.count = 0; }

    void add(const ColumnEntry& entry) {
        if (m_columns.count == m_columns.capacity) grow();
        const std::size_t place = m_columns.count++;
        m_columns.text[place] = entry.text;
        m_columns.start[place] = entry.start;
        m_columns.end[place] = entry.end;
        m_columns.dataNumber[place] = entry.dataNumber;
        m_columns.image[place] = entry.image;
    }

private:
    // The capacity changes when all columns have grown.
    void grow() {
        std::size_t capacity = m_columns.capacity;
        for (std::uint32_t** column : {&m_columns.text, &m_columns.start, &m_columns.end,
                                       &m_columns.dataNumber, &m_columns.image}) {
            capacity = m_columns.capacity;
            growItems(*column, capacity);
        }
        m_columns.capacity = capacity;
    }

    DictionaryColumns& m_columns;
};

}  // namespace Dictionary

#endif
