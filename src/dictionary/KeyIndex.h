// Helper, not installed: all keys of an image in order, and where those with a prefix begin.
//
// Keys are listed in the order of their code points, each by what it does not share with the key
// before it. So the next key is found next in memory, and no cell has to be visited. Any cell leads
// to the first key whose walk passes it; the keys that pass it follow each other.
//
// A key whose labels are no legal UTF-16 is not listed: no text contains it.

#ifndef DICTIONARY_KEY_INDEX_H
#define DICTIONARY_KEY_INDEX_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "ImageFormat.h"

namespace Dictionary {

// An entry of the list.
struct KeyEntry {
    std::int32_t feature;  // of the key, as in its cell
    std::uint32_t shared;  // bytes that the key shares with the one before it, in whole characters
    std::uint32_t added;   // bytes of the key after those
    const char* text;      // of the bytes added; `kEntrySlack` bytes more can be read after them
    const char* next;      // where the next entry begins
};
constexpr std::size_t kEntrySlack = 16;

class KeyIndex {
public:
    // Reads every cell once. Any image will do, however damaged its cells are.
    explicit KeyIndex(const ImageView& image);

    std::size_t keyCount() const { return m_keyCount; }
    std::size_t longestKey() const { return m_longestKey; }  // in bytes

    const char* entriesBegin() const { return m_entries.data(); }
    const char* entriesEnd() const { return m_entries.data() + m_entries.size() - kEntrySlack; }
    // The entry of the first key whose walk passes `cell`; the end when there is none.
    const char* entriesFrom(std::uint32_t cell) const;

    static KeyEntry entryAt(const char* place);

private:
    friend class KeyLister;

    std::string m_entries;
    std::vector<std::uint32_t> m_places;  // by cell; of no entry where no key passes
    std::size_t m_keyCount = 0;
    std::size_t m_longestKey = 0;
};

// Lengths take one byte, or five with the mark of a long one.
constexpr std::uint8_t kLongLength = 0xFF;
constexpr std::size_t kMostLengthBytes = 1 + sizeof(std::uint32_t);

inline const char* readLength(const char* place, std::uint32_t& length) {
    length = static_cast<std::uint8_t>(*place++);
    if (length != kLongLength) return place;
    std::memcpy(&length, place, sizeof length);
    return place + sizeof length;
}

inline KeyEntry KeyIndex::entryAt(const char* place) {
    KeyEntry entry;
    std::memcpy(&entry.feature, place, sizeof entry.feature);
    place = readLength(place + sizeof entry.feature, entry.shared);
    entry.text = readLength(place, entry.added);
    entry.next = entry.text + entry.added;
    return entry;
}

}  // namespace Dictionary

#endif
