#include "SourceItems.h"

#include "CallerCallback.h"
#include "Errors.h"

namespace Dictionary {

const char* wordsForItem(int code) {
    constexpr struct {
        int code;
        const char* words;
    } kWords[] = {
        {DICTIONARY_BAD_SEPARATOR,
         "a field has a tab, which ends fields in an image; write it differently or divide the "
         "field"},
        {DICTIONARY_NO_FIELD, "the item has no data; put a field after the key"},
        {DICTIONARY_EMPTY_RECORD, "the item is empty; remove it or give it a key and data"},
        {DICTIONARY_EMPTY_KEY, "the key is empty and is never found; write one or remove the item"},
        {DICTIONARY_BOM,
         "a byte-order mark begins the first key and would be part of it; remove it"},
        {DICTIONARY_NO_RECORDS, "there are no items; add some or allow an empty image"},
    };
    for (const auto& row : kWords) {
        if (row.code == code) return row.words;
    }
    return nullptr;
}

bool SourceItems::next(SourceRecord& record) {
    const DictionaryText* fields = nullptr;
    std::size_t count = 0;
    if (!fetch(fields, count)) return false;
    m_text.clear();
    m_strayTabs.clear();
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) m_text += kFieldSeparator;
        append(fields[i]);
    }
    record.text = m_text;
    record.tooLong = m_text.size() > SourceRecords::kMaxRecordBytes;
    record.finished = true;
    ++record.number;
    return true;
}

bool SourceItems::fetch(const DictionaryText*& fields, std::size_t& count) const {
    bool isItem = false;
    const bool isDone = callBack([&] {
        isItem = m_nextItem(m_context, &fields, &count);
        return true;
    });
    if (!isDone) throw Failure{errorOf(DICTIONARY_STOPPED)};
    requireArgument(!isItem || fields != nullptr || count == 0, "the fields of an item are null");
    return isItem;
}

void SourceItems::append(const DictionaryText& field) {
    requireArgument(field.bytes != nullptr || field.size == 0, "a field of an item is null");
    const std::string_view text(field.bytes, field.size);
    for (std::size_t tab = text.find(kFieldSeparator); tab != text.npos;
         tab = text.find(kFieldSeparator, tab + 1)) {
        m_strayTabs.push_back(m_text.size() + tab + 1);
    }
    m_text += text;
}

}  // namespace Dictionary
