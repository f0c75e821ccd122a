// Helper, not installed: gathers the keys of a source with their data.

#ifndef DICTIONARY_SOURCE_TABLE_H
#define DICTIONARY_SOURCE_TABLE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "StringTable.h"

namespace Dictionary {

// Keys with the data of their records, joined in source order with ";". Joining costs no copy of
// what is there already.
class SourceTable {
public:
    // Adds a record: its key, and its data fields, each of which is followed by a tab in the data.
    // Returns the key's number, counted from 0 by first sight.
    std::uint32_t add(const std::vector<char*>& fields);

    std::uint32_t size() const { return m_keys.size(); }
    std::size_t keyBytes() const { return m_keyBytes; }
    std::string_view key(std::uint32_t number) const { return m_keys[number]; }

    // Calls `piece(text)` for the pieces of a key's data, in order, separators included.
    template <class Piece>
    void forEachPiece(std::uint32_t number, Piece piece) const {
        const Data* const first = m_data[number].first;
        for (const Data* data = first; data != nullptr; data = data->next) {
            if (data != first) piece(kJoint);
            piece(std::string_view(data->text, data->size));
        }
    }

    // A key's data in one piece, which lasts as long as the table or until `scratch` changes.
    std::string_view data(std::uint32_t number, std::string& scratch) const;

    // The keys' numbers in bytewise order of the keys.
    std::vector<std::uint32_t> sorted() const { return m_keys.sorted(); }

private:
    static constexpr std::string_view kJoint = ";";

    // The data of one record.
    struct Data {
        const Data* next;
        const char* text;
        std::size_t size;
    };
    struct DataList {
        Data* first;
        Data* last;
    };

    Data* keepData(const std::vector<char*>& fields);

    StringTable m_keys;
    ByteArena m_arena;
    std::vector<DataList> m_data;  // by key number
    std::size_t m_keyBytes = 0;    // of all keys together
};

}  // namespace Dictionary

#endif
