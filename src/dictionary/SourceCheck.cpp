#include "SourceCheck.h"

#include <algorithm>

#include "Dictionary.h"
#include "ImageFormat.h"
#include "Utf8Decoder.h"

namespace Dictionary {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kNone = std::string_view::npos;

// No UTF-8 begins like one of these.
constexpr struct {
    std::string_view beginning;
    const char* text;
} kForeignKinds[] = {
    {"\x1F\x8B", "this is a gzip file; try zcat FILE | ..."},
    {"\xFD"
     "7zXZ",
     "this is an xz file; try xzcat FILE | ..."},
    {"\x28\xB5\x2F\xFD", "this is a zstd file; try zstdcat FILE | ..."},
    {"\xFF\xFE", "this is UTF-16; try iconv -f UTF-16 -t UTF-8 FILE | ..."},
    {"\xFE\xFF", "this is UTF-16; try iconv -f UTF-16 -t UTF-8 FILE | ..."},
};

// A header has a word of zero bits, which no text has.
bool looksLikeImage(std::string_view beginning) {
    if (beginning.size() < kCellBytes) return false;
    const Cell header = headerOf(beginning.data());
    return header.check == kFreeImageCheck && featureBytesOf(header) >= 0 &&
           cellBytesOf(header) >= kCellBytes && cellBytesOf(header) % kCellBytes == 0;
}

bool beginsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

}  // namespace

const char* foreignKind(std::string_view beginning) {
    for (const auto& kind : kForeignKinds) {
        if (beginsWith(beginning, kind.beginning)) return kind.text;
    }
    return looksLikeImage(beginning) ? "this is an image; name the source that it was built from"
                                     : nullptr;
}

void SourceCheck::takeOffWindowsMarks(SourceRecord& record) const {
    if (record.number == 1 && beginsWith(record.text, kByteOrderMark)) {
        record.skipped = kByteOrderMark.size();
        record.text.remove_prefix(record.skipped);
    }
    if (endsInCr(record.text)) record.text.remove_suffix(1);
}

const std::vector<Finding>& SourceCheck::examine(const SourceRecord& record, std::size_t keySize) {
    m_found.clear();
    if (record.tooLong) {
        add(DICTIONARY_RECORD_TOO_LONG, SourceRecords::kMaxRecordBytes);
    } else {
        examineText(record, keySize);
    }
    if (!record.finished) add(DICTIONARY_UNFINISHED, record.text.size());
    // Sorting takes memory, even for one.
    if (m_found.size() > 1) {
        std::stable_sort(m_found.begin(), m_found.end(),
                         [](const Finding& a, const Finding& b) { return a.column < b.column; });
    }
    return m_found;
}

void SourceCheck::examineText(const SourceRecord& record, std::size_t keySize) {
    const std::string_view text = record.text;
    if (record.number == 1 && beginsWith(text, kByteOrderMark)) add(DICTIONARY_BOM, 0);
    const bool cr = endsInCr(text);
    const std::size_t size = cr ? text.size() - 1 : text.size();
    if (size == 0) {
        add(DICTIONARY_EMPTY_RECORD, 0);
    } else if (keySize == kNone) {
        add(DICTIONARY_NO_FIELD, size);
    } else {
        examineKey(text.substr(0, keySize));
        if (!m_join.empty()) examineFields(text, keySize);
    }
    if (cr) add(DICTIONARY_CR, size);
    const std::size_t nul = text.find('\0');
    if (nul != kNone) add(DICTIONARY_NUL, nul);
}

// The data of a repeated key is joined with ";", so a field that begins with ";" looks like the
// beginning of a record.
void SourceCheck::examineFields(std::string_view text, std::size_t keySize) {
    const std::size_t separatorSize = m_join.size() - 1;
    const std::size_t join = text.find(m_join, keySize + separatorSize);
    if (join != kNone) add(DICTIONARY_FIELD_MARK, join + separatorSize);
}

// Judges like the coder, which stops at the first byte that is not legal UTF-8.
void SourceCheck::examineKey(std::string_view key) {
    if (key.empty()) return add(DICTIONARY_EMPTY_KEY, 0);
    const std::size_t legal =
        decodeUtf8(key.data(), key.size(), [](std::int32_t, std::size_t, std::uint32_t) {});
    if (legal < key.size()) add(DICTIONARY_BAD_UTF8, legal);
}

}  // namespace Dictionary
