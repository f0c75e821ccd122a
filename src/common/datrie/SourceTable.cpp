#include "SourceTable.h"

#include <algorithm>
#include <limits>

namespace Dictionary {

void SourceTable::add(const std::vector<std::string_view>& fields) {
    const std::string_view key = fields[0];
    std::size_t dataSize = 0;
    for (std::size_t i = 1; i < fields.size(); ++i) dataSize += fields[i].size() + 1;
    char* const text = m_arena.allocate(key.size() + dataSize);
    m_records.push_back(
        {text, static_cast<std::uint32_t>(key.size()), static_cast<std::uint32_t>(dataSize)});
    m_keyBytes += key.size();
    char* end = std::copy(key.begin(), key.end(), text);
    for (std::size_t i = 1; i < fields.size(); ++i) {
        end = std::copy(fields[i].begin(), fields[i].end(), end);
        *end++ = '\t';
    }
}

void SourceTable::arrange() {
    const std::vector<SortEntry> order =
        sortedStrings(recordCount(), [this](std::uint32_t record) { return key(record); });
    m_keys.reserve(order.size());
    const SortEntry* const last = order.data() + order.size();
    for (const SortEntry *first = order.data(), *end; first != last; first = end) {
        end = first + 1;
        while (end != last && end->prefix == first->prefix &&
               key(end->number) == key(first->number)) {
            ++end;
        }
        if (end - first > 1) join(first, end);
        m_keys.push_back((end - 1)->number);
    }
}

// Joins the data of a key's records in source order. The data of each record becomes the front part
// of the joined text, up to the end of its own data.
void SourceTable::join(const SortEntry* first, const SortEntry* end) {
    const std::string_view key = this->key(first->number);
    std::size_t size = key.size();
    for (const SortEntry* i = first; i != end; ++i) size += data(i->number).size() + 1;
    char* const text = m_arena.allocate(size);
    char* const joined = std::copy(key.begin(), key.end(), text);
    char* out = joined;
    for (const SortEntry* i = first; i != end; ++i) {
        if (i != first) *out++ = ';';
        const std::string_view own = data(i->number);
        out = std::copy(own.begin(), own.end(), out);
        // No image has room for more anyway.
        constexpr std::size_t kMost = std::numeric_limits<std::uint32_t>::max();
        const std::size_t shown = std::min(static_cast<std::size_t>(out - joined), kMost);
        m_records[i->number] = {text, static_cast<std::uint32_t>(key.size()),
                                static_cast<std::uint32_t>(shown)};
    }
}

}  // namespace Dictionary
