#include "SourceTable.h"

#include <cstring>
#include <new>

namespace Dictionary {

std::uint32_t SourceTable::add(const std::vector<char*>& fields) {
    Data* const data = keepData(fields);
    const std::uint32_t number = m_keys.add(fields.front());
    if (number == m_data.size()) {
        m_data.push_back({data, data});
        m_keyBytes += m_keys[number].size();
        return number;
    }
    m_data[number].last->next = data;
    m_data[number].last = data;
    return number;
}

SourceTable::Data* SourceTable::keepData(const std::vector<char*>& fields) {
    std::size_t size = 0;
    for (std::size_t i = 1; i < fields.size(); ++i) size += std::strlen(fields[i]) + 1;
    char* const room = m_arena.allocate(sizeof(Data) + size);
    char* text = room + sizeof(Data);
    auto* data = new (room) Data{nullptr, text, size};
    for (std::size_t i = 1; i < fields.size(); ++i) {
        const std::size_t length = std::strlen(fields[i]);
        std::memcpy(text, fields[i], length);
        text += length;
        *text++ = '\t';
    }
    return data;
}

std::string_view SourceTable::data(std::uint32_t number, std::string& scratch) const {
    const Data* const first = m_data[number].first;
    if (first->next == nullptr) return {first->text, first->size};
    scratch.clear();
    forEachPiece(number, [&](std::string_view piece) { scratch += piece; });
    return scratch;
}

}  // namespace Dictionary
