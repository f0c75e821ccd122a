// Helper, not installed: all keys of an image in order, and where those with a prefix begin.
//
// Keys are listed in the order of their code points. An entry has only the part of its key that the
// key before does not share. So the next key is next in memory, and no cell has to be visited. Each
// cell leads to the first key whose walk passes it; the other keys that pass it come right after.
//
// A key whose labels are not legal UTF-16 is not listed: no text contains it.

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
    const char* text;      // the bytes added; `kEntrySlack` more bytes can be read after them
    const char* next;      // where the next entry begins
};
constexpr std::size_t kEntrySlack = 16;

class KeyIndex {
public:
    // Goes through the cells twice. Any image will do, however damaged its cells are.
    explicit KeyIndex(const ImageView& image);

    std::size_t keyCount() const { return m_keyCount; }
    std::size_t longestKey() const { return m_longestKey; }  // in bytes

    const char* entriesBegin() const { return m_entries.data(); }
    const char* entriesEnd() const { return m_entries.data() + m_entries.size() - kEntrySlack; }
    // The entry of the first key whose walk passes `cell`; the end if there is none.
    const char* entriesFrom(std::uint32_t cell) const;

    static KeyEntry entryAt(const char* place);

private:
    friend class KeyLister;

    std::string m_entries;
    std::vector<std::uint32_t> m_places;  // of entries, by cell; of no entry if no key passes it
    std::size_t m_keyCount = 0;
    std::size_t m_longestKey = 0;
};

// A length takes one byte, or five of which the first marks a long one.
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
