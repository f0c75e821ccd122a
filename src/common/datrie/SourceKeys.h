// Helper, not installed: adds the keys of a source to a trie.

#ifndef DICTIONARY_SOURCE_KEYS_H
#define DICTIONARY_SOURCE_KEYS_H

#include <cstdint>
#include <string>

#include "SourceTable.h"
#include "TrieBuilder.h"
#include "UTF8Coder.h"

namespace Dictionary {

// Adds the keys of an arranged table to a builder. Calls `refused(key)` for each key that the coder
// refuses.
template <class Refused>
void addKeysOf(const SourceTable& table, ICoderInterface& coder, TrieBuilder& builder,
               Refused refused) {
    builder.reserve(table.keyCount(), table.keyBytes());
    std::string key;
    table.forEachKey([&](std::uint32_t record) {
        key = table.trieKey(record);
        if (!builder.addKey(coder, key.c_str(), false, table.data(record))) refused(key);
    });
}

}  // namespace Dictionary

#endif
