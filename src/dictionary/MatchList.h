// Helper, not installed: lists in C structs that grow.

#ifndef DICTIONARY_MATCH_LIST_H
#define DICTIONARY_MATCH_LIST_H

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "Dictionary.h"

namespace Dictionary {

// Makes room in `items`, memory from realloc, for at least one more item, and raises `capacity`.
template <class Item>
void growItems(Item*& items, std::size_t& capacity) {
    constexpr std::size_t kFirstCapacity = 16;
    const std::size_t grown = std::max(kFirstCapacity, 2 * capacity);
    void* const memory = std::realloc(items, grown * sizeof *items);
    if (memory == nullptr) throw std::bad_alloc();
    items = static_cast<Item*>(memory);
    capacity = grown;
}

// The caller's list of matches, emptied.
class MatchList {
public:
    explicit MatchList(DictionaryMatches& list) : m_list(list) { clear(); }

    void clear() { m_list.count = 0; }
    std::size_t count() const { return m_list.count; }

    void add(const DictionaryMatch& match) {
        if (m_list.count == m_list.capacity) growItems(m_list.items, m_list.capacity);
        m_list.items[m_list.count++] = match;
    }

private:
    DictionaryMatches& m_list;
};

}  // namespace Dictionary

#endif
