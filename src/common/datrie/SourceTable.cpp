#include "SourceTable.h"

#include <cstring>
#include <numeric>

#include "StringSort.h"

namespace Dictionary {

void SourceTable::add(const std::vector<char*>& fields) {
    const std::size_t keySize = std::strlen(fields[0]);
    std::size_t dataSize = 0;
    for (std::size_t i = 1; i < fields.size(); ++i) dataSize += std::strlen(fields[i]) + 1;
    char* text = m_arena.allocate(keySize + dataSize);
    m_records.push_back({text, static_cast<std::uint32_t>(keySize),
                         static_cast<std::uint32_t>(dataSize)});
    m_keyBytes += keySize;
    std::memcpy(text, fields[0], keySize);
    text += keySize;
    for (std::size_t i = 1; i < fields.size(); ++i) {
        const std::size_t length = std::strlen(fields[i]);
        std::memcpy(text, fields[i], length);
        text += length;
        *text++ = '\t';
    }
}

void SourceTable::arrange() {
    const std::vector<std::uint32_t> order =
        sortedNumbers(recordCount(), [this](std::uint32_t record) { return key(record); });
    m_keys.reserve(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i > 0 && key(order[i - 1]) == key(order[i])) {
            link(order[i - 1], order[i]);
        } else {
            m_keys.push_back(order[i]);
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
