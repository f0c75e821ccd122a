// Helper, not installed: finds what is wrong with a record.

#ifndef DICTIONARY_SOURCE_CHECK_H
#define DICTIONARY_SOURCE_CHECK_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "SourceRecords.h"

namespace Dictionary {

struct Finding {
    int code;  // a DictionaryCode
    std::uint64_t column;
};

// Says in words what a file is that begins like this and is not a source; null if it may be one.
const char* foreignKind(std::string_view beginning);

class SourceCheck {
public:
    // Whether records are lines, which may end in a carriage return by mistake.
    explicit SourceCheck(bool recordsAreLines) : m_recordsAreLines(recordsAreLines) {}

    // Also finds fields after the first data field that begin with ";".
    void lookForJoins(std::string fieldSeparator) { m_join = std::move(fieldSeparator) + ';'; }

    // Takes off what Windows puts before the first record and after each line.
    void takeOffWindowsMarks(SourceRecord& record) const;

    // Examines a record whose field separator is at `keySize`; npos if there is none. Returns what
    // is wrong, in the order of columns, each kind at most once. Valid until the next call.
    const std::vector<Finding>& examine(const SourceRecord& record, std::size_t keySize);

private:
    void examineText(const SourceRecord& record, std::size_t keySize);
    void examineFields(std::string_view text, std::size_t keySize);
    void examineKey(std::string_view key);
    bool endsInCr(std::string_view text) const {
        return m_recordsAreLines && !text.empty() && text.back() == '\r';
    }
    void add(int code, std::size_t index) { m_found.push_back({code, index + 1}); }

    bool m_recordsAreLines;
    std::string m_join;  // empty if it is not looked for
    std::vector<Finding> m_found;
};

}  // namespace Dictionary

#endif
