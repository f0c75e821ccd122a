#include "SourceTable.h"

#include <algorithm>
#include <numeric>

#include "StringSort.h"

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
    const std::vector<LedString> order =
        sortedStrings(recordCount(), [this](std::uint32_t record) { return key(record); });
    m_keys.reserve(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        const std::uint32_t record = order[i].number;
        if (i > 0 && order[i].lead == order[i - 1].lead &&
            key(record) == key(order[i - 1].number)) {
            link(order[i - 1].number, record);
        } else {
            m_keys.push_back(record);
        }
    }
}

void SourceTable::link(std::uint32_t record, std::uint32_t next) {
    if (m_first.empty()) {
        m_first.resize(recordCount());
        std::iota(m_first.begin(), m_first.end(), std::uint32_t{0});
        m_next = m_first;
    }
    m_next[record] = next;
    m_first[next] = m_first[record];
}

std::string_view SourceTable::data(std::uint32_t key, std::string& scratch) const {
    if (m_next.empty() || m_next[key] == key) return ownData(key);
    scratch.clear();
    std::uint32_t record = key;
    for (; m_next[record] != record; record = m_next[record]) {
        scratch += ownData(record);
        scratch += kJoint;
    }
    return scratch += ownData(record);
}

}  // namespace Dictionary
