// Helper, not installed: distinct byte strings, each kept once and numbered in the order of first
// appearance.

#ifndef DICTIONARY_STRING_TABLE_H
#define DICTIONARY_STRING_TABLE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "KeyedHash.h"

namespace Dictionary {

// Memory for bytes, which stay where they are until the arena is destroyed.
class ByteArena {
public:
    // Room for `bytes` bytes, without any alignment.
    char* allocate(std::size_t bytes);
    std::string_view keep(std::string_view text);

private:
    std::vector<std::unique_ptr<char[]> > m_blocks;
    char* m_free = nullptr;
    std::size_t m_left = 0;
};

class StringTable {
public:
    // The number of `text`, counted from 0. Copies the text if it is new.
    std::uint32_t add(std::string_view text);

    // The number of `text`, or kNone.
    std::uint32_t find(std::string_view text) const { return find(text, m_hash(text)); }
    static constexpr std::uint32_t kNone = static_cast<std::uint32_t>(-1);

    std::uint32_t size() const { return static_cast<std::uint32_t>(m_entries.size()); }
    std::string_view operator[](std::uint32_t number) const {
        return {m_entries[number].text, m_entries[number].length};
    }

    // The numbers of all strings, in bytewise order of the strings.
    std::vector<std::uint32_t> sorted() const;

private:
    struct Entry {
        const char* text;
        std::uint32_t length;
        std::uint32_t hash;
    };
    // A slot has the hash of its entry, too, so that a probe seldom compares different strings.
    struct Slot {
        std::uint32_t hash;
        std::uint32_t entry;  // number plus 1, or 0
    };

    std::uint32_t find(std::string_view text, std::uint32_t hash) const;
    void grow();
    void fill(std::uint32_t hash, std::uint32_t number);

    KeyedHash m_hash;
    ByteArena m_arena;
    std::vector<Entry> m_entries;
    std::vector<Slot> m_slots;  // a power of two of them, probed one after the other
};

}  // namespace Dictionary

#endif
