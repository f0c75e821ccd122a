// Helper, not installed: finds what is wrong with a record.

#ifndef DICTIONARY_SOURCE_CHECK_H
#define DICTIONARY_SOURCE_CHECK_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "SourceRecords.h"

namespace Dictionary {

struct Finding {
    int code;  // a DictionaryProblemCode
    std::uint64_t column;
};

class SourceCheck {
public:
    // Whether records are lines, which may end in a carriage return by mistake.
    explicit SourceCheck(bool recordsAreLines) : m_recordsAreLines(recordsAreLines) {}

    // Examines a record whose field separator stands at `keySize`, npos when there is none. What
    // is found stands in order of the columns until the next call, each kind at most once.
    const std::vector<Finding>& examine(const SourceRecord& record, std::size_t keySize);

private:
    void examineText(const SourceRecord& record, std::size_t keySize);
    void examineKey(std::string_view key);
    void add(int code, std::size_t index) { m_found.push_back({code, index + 1}); }

    bool m_recordsAreLines;
    std::vector<Finding> m_found;
};

}  // namespace Dictionary

#endif
