// Helper, not installed: cuts a source into records.

#ifndef DICTIONARY_SOURCE_RECORDS_H
#define DICTIONARY_SOURCE_RECORDS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "SourceText.h"

namespace Dictionary {

struct SourceRecord {
    std::string_view text;     // without the separator; empty if the record is too long
    std::uint64_t number = 0;  // from 1
    std::size_t skipped = 0;   // bytes before the text that are not part of it
    bool tooLong = false;
    bool finished = false;  // a separator follows
};

class SourceRecords {
public:
    // The size of the longest record. CRecordReader has the same limit.
    static constexpr std::size_t kMaxRecordBytes = 4194298;

    // `source` must outlive the object; `separator` is not empty.
    SourceRecords(SourceText& source, std::string separator)
        : m_source(source), m_separator(std::move(separator)) {}

    // The beginning of the source, as much of it as is read at once. Must be called before next().
    std::string_view beginning();

    // Makes `record` the next one, valid until the next call. Returns false at the source's end.
    bool next(SourceRecord& record);

private:
    bool readOn();
    std::size_t findEnd();
    bool skipRest();

    SourceText& m_source;
    std::string m_separator;
    std::string_view m_unread;
};

}  // namespace Dictionary

#endif
