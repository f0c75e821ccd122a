#include "KeyCursor.h"

#include <cstring>
#include <optional>

#include "Utf8Text.h"

namespace Dictionary {

namespace {

// Copies whole blocks. After both texts there is room for one.
void copyText(char* target, const char* text, std::size_t size) {
    std::size_t done = 0;
    do {
        std::memcpy(target + done, text + done, kEntrySlack);
        done += kEntrySlack;
    } while (done < size);
}

// Where the walk of `prefix` ends.
std::optional<std::uint32_t> cellOf(const CellView& cells, std::string_view prefix) {
    const Utf8LabelText labels(prefix.data(), prefix.size());
    std::size_t place = 0;
    const std::int32_t first = labels.next(place);
    if (!cells.holds(first)) return std::nullopt;
    auto cell = static_cast<std::uint32_t>(first);
    while (place < labels.size()) {
        if (!cells.descend(cell, labels.next(place))) return std::nullopt;
    }
    return cell;
}

}  // namespace

KeyCursor::KeyCursor(const ImageView& image, const KeyIndex& index)
    : m_image(&image), m_index(&index), m_text(new char[index.longestKey() + kEntrySlack]) {
    seek({});
}

void KeyCursor::seek(std::string_view prefix) {
    if (prefix.empty()) return start(m_index->entriesBegin(), 0);
    const std::optional<std::uint32_t> cell = cellOf(m_image->cells(), prefix);
    const char* const entry = cell ? m_index->entriesFrom(*cell) : m_index->entriesEnd();
    if (entry != m_index->entriesEnd()) std::memcpy(m_text.get(), prefix.data(), prefix.size());
    start(entry, prefix.size());
}

void KeyCursor::start(const char* entry, std::size_t prefixBytes) {
    constexpr int kNear = 8;
    m_entry = entry;
    m_ahead = entry;
    m_size = 0;
    m_prefixBytes = prefixBytes;
    m_leastShared = 0;
    m_stepsToFar = kFar - kNear;
    for (int i = 0; i < kNear; ++i) lookAhead();
}

// Prefetches the data of one more key.
void KeyCursor::lookAhead() {
    if (m_ahead == m_index->entriesEnd()) return;
    const KeyEntry entry = KeyIndex::entryAt(m_ahead);
    m_image->prefetchFeature(entry.feature);
    m_ahead = entry.next;
}

bool KeyCursor::next() {
    m_size = 0;
    if (m_entry == m_index->entriesEnd()) return false;
    const KeyEntry entry = KeyIndex::entryAt(m_entry);
    if (entry.shared < m_leastShared) {
        m_entry = m_index->entriesEnd();
        return false;
    }
    lookAhead();
    if (m_stepsToFar > 0) {
        --m_stepsToFar;
        lookAhead();
    }
    copyText(m_text.get() + entry.shared, entry.text, entry.added);
    m_size = entry.shared + entry.added;
    m_feature = entry.feature;
    m_leastShared = m_prefixBytes;
    m_entry = entry.next;
    return true;
}

}  // namespace Dictionary
