/// @file
/// Feature records: the data of a key as a length-prefixed byte string, and the area that holds
/// such records one after the other, addressed by byte offset.

#ifndef DICTIONARY_FEATURE_DATA_H
#define DICTIONARY_FEATURE_DATA_H

#include <string>

#include "DictionaryExport.h"

/// One record. In an area it is its length as a little-endian 32-bit integer, then that many bytes
/// of text, with no padding and no terminator.
class DICTIONARY_EXPORT CFeatureData {
public:
    /// An empty record.
    CFeatureData() : length(0) {}

    /// Writes the record at *cursor and moves the cursor past it. A record of length 0 writes
    /// nothing and leaves the cursor where it is.
    void serialize(void** cursor);

    /// Reads the record at *cursor and moves the cursor past it. The text ends at the first NUL
    /// among its bytes. A length of 0 leaves text and cursor as they were.
    void deserialize(void** cursor);

    int length;        ///< in bytes
    std::string text;  ///< the bytes that serialize writes and deserialize reads
};

/// An area of records. When building, it owns the area and grows it; when reading, it views one
/// that is owned elsewhere. Two threads must not use it at once, except that `read` may run
/// concurrently with itself.
class DICTIONARY_EXPORT CFeatureDataContainer {
public:
    /// An empty area, which owns what it grows into.
    CFeatureDataContainer() : m_buffer(nullptr), m_capacity(8), m_size(0), m_owner(true) {}

    /// Releases the buffer if it is owned.
    ~CFeatureDataContainer();

    CFeatureDataContainer(const CFeatureDataContainer&) = delete;
    CFeatureDataContainer& operator=(const CFeatureDataContainer&) = delete;

    /// Appends `record` and returns its byte offset. An empty text takes four bytes, too. The
    /// capacity grows by doubling; bytes not yet written are zero.
    int write(CFeatureData& record);

    /// Loads the record at byte `offset`, which is not checked against the area's size. A negative
    /// offset leaves `record` as it was; without a buffer it becomes empty.
    void read(CFeatureData& record, int offset);

    /// Replaces the area by `buffer`, of whose `capacity` bytes `size` are in use. If `owner` is
    /// true, the buffer will be released as an array of char; otherwise it is only viewed.
    void reset(bool owner, const char* buffer, int capacity, int size);

    /// The area's first byte; null when there is none. Valid until the next write, reset or
    /// destruction.
    const char* data() const { return m_buffer; }
    /// How many of its bytes are in use.
    int size() const { return m_size; }

private:
    char* m_buffer;
    int m_capacity;
    int m_size;
    bool m_owner;
};

#endif
