#include "SourceRecords.h"

#include <algorithm>

namespace Dictionary {

namespace {

constexpr std::size_t kNotFound = std::string_view::npos;

}  // namespace

std::string_view SourceRecords::beginning() {
    readOn();
    return m_unread;
}

bool SourceRecords::next(SourceRecord& record) {
    if (m_unread.empty() && !readOn()) return false;
    const std::size_t end = findEnd();
    record.text = m_unread.substr(0, end);
    record.tooLong = record.text.size() > kMaxRecordBytes;
    record.finished = end != kNotFound;
    record.skipped = 0;
    ++record.number;
    if (record.tooLong) {
        record.text = {};
        record.finished = skipRest();
    } else {
        m_unread.remove_prefix(record.finished ? end + m_separator.size() : m_unread.size());
    }
    return true;
}

bool SourceRecords::readOn() {
    const std::size_t before = m_unread.size();
    m_unread = m_source.more(before);
    return m_unread.size() > before;
}

// Where the separator is in the unread bytes. Not found means that the source ends before it, or
// that the record is too long.
std::size_t SourceRecords::findEnd() {
    std::size_t from = 0;
    for (;;) {
        const std::size_t end = m_unread.find(m_separator, from);
        if (end != kNotFound || m_unread.size() > kMaxRecordBytes + m_separator.size()) return end;
        // The last bytes may be the first ones of a separator.
        from = m_unread.size() - std::min(m_unread.size(), m_separator.size() - 1);
        if (!readOn()) return kNotFound;
    }
}

// Skips the rest of a record, however long, and its separator. Returns false if it has none.
bool SourceRecords::skipRest() {
    do {
        const std::size_t end = m_unread.find(m_separator);
        if (end != kNotFound) {
            m_unread.remove_prefix(end + m_separator.size());
            return true;
        }
        const std::size_t kept = std::min(m_unread.size(), m_separator.size() - 1);
        m_unread.remove_prefix(m_unread.size() - kept);
    } while (readOn());
    m_unread = {};
    return false;
}

}  // namespace Dictionary
