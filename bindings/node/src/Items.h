// Items of a source in memory.

#ifndef DICTIONARY_NODE_ITEMS_H
#define DICTIONARY_NODE_ITEMS_H

#include <cstddef>
#include <string>
#include <vector>

#include "Dictionary.h"
#include "Napi.h"

namespace Dictionary::Node {

// Copies of the items, one after the other.
class Items {
public:
    // From an array of items, each an array of strings: a key and its data fields.
    explicit Items(const Value& items);

    // Makes them the source. They are read once.
    void describe(DictionarySource& source);

private:
    static bool next(void* self, const DictionaryText** fields, std::size_t* count);

    std::string m_bytes;
    std::vector<std::size_t> m_fieldEnds;  // in the bytes
    std::vector<std::size_t> m_itemEnds;   // in the fields
    std::vector<DictionaryText> m_fields;  // of the current item
    std::size_t m_item = 0;
};

}  // namespace Dictionary::Node

#endif
