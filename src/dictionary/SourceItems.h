// Helper, not installed: items in memory as the records of a source.

#ifndef DICTIONARY_SOURCE_ITEMS_H
#define DICTIONARY_SOURCE_ITEMS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Dictionary.h"
#include "SourceRecords.h"

namespace Dictionary {

// What is wrong with an item, in words; null if the words for the records of a text fit.
const char* wordsForItem(int code);

// An item is a record whose fields are joined by tabs, and its number is that of the record.
class SourceItems {
public:
    static constexpr char kFieldSeparator = '\t';

    explicit SourceItems(const DictionarySource& source)
        : m_nextItem(source.nextItem), m_context(source.context) {}

    // Makes `record` the next one, valid until the next call. Returns false after the last one.
    // Throws DICTIONARY_STOPPED if the caller's function throws.
    bool next(SourceRecord& record);

    // Where the current record has tabs inside its fields, in bytes from 1.
    const std::vector<std::uint64_t>& strayTabs() const { return m_strayTabs; }

private:
    bool fetch(const DictionaryText*& fields, std::size_t& count) const;
    void append(const DictionaryText& field);

    bool (*m_nextItem)(void*, const DictionaryText**, std::size_t*);
    void* m_context;
    std::string m_text;
    std::vector<std::uint64_t> m_strayTabs;
};

}  // namespace Dictionary

#endif
