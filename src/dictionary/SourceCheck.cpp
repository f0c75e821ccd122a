#include "SourceCheck.h"

#include <algorithm>

#include "DATChecked.h"
#include "Utf8Decoder.h"

namespace Dictionary {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kNone = std::string_view::npos;

}  // namespace

const std::vector<Finding>& SourceCheck::examine(const SourceRecord& record, std::size_t keySize) {
    m_found.clear();
    if (record.tooLong) {
        add(DICTIONARY_PROBLEM_RECORD_TOO_LONG, SourceRecords::kMaxRecordBytes);
    } else {
        examineText(record, keySize);
    }
    if (!record.finished) add(DICTIONARY_PROBLEM_UNFINISHED, record.text.size());
    if (m_found.size() > 1) {
        std::stable_sort(m_found.begin(), m_found.end(),
                         [](const Finding& a, const Finding& b) { return a.column < b.column; });
    }
    return m_found;
}

void SourceCheck::examineText(const SourceRecord& record, std::size_t keySize) {
    const std::string_view text = record.text;
    if (record.number == 1 && text.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        add(DICTIONARY_PROBLEM_BOM, 0);
    }
    const bool endsInCr = m_recordsAreLines && !text.empty() && text.back() == '\r';
    const std::size_t size = endsInCr ? text.size() - 1 : text.size();
    if (size == 0) {
        add(DICTIONARY_PROBLEM_EMPTY_RECORD, 0);
    } else if (keySize == kNone) {
        add(DICTIONARY_PROBLEM_NO_FIELD, size);
    } else {
        examineKey(text.substr(0, keySize));
    }
    if (endsInCr) add(DICTIONARY_PROBLEM_CR, size);
    const std::size_t nul = text.find('\0');
    if (nul != kNone) add(DICTIONARY_PROBLEM_NUL, nul);
}

// Judges as the coder will: it refuses a character above the plane, and stops where UTF-8 does.
void SourceCheck::examineKey(std::string_view key) {
    if (key.empty()) return add(DICTIONARY_PROBLEM_EMPTY_KEY, 0);
    std::size_t legal = 0;
    std::size_t beyond = kNone;
    decodeUtf8(key.data(), key.size(),
               [&](std::int32_t code, std::size_t start, std::uint32_t length) {
                   legal = start + length;
                   if (code >= kBmpEnd && beyond == kNone) beyond = start;
               });
    if (beyond != kNone) add(DICTIONARY_PROBLEM_BEYOND_BMP, beyond);
    if (legal < key.size()) add(DICTIONARY_PROBLEM_BAD_UTF8, legal);
}

}  // namespace Dictionary
