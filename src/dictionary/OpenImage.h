// Helper, not installed: a verified image, and what is learnt about it when that is first needed.

#ifndef DICTIONARY_OPEN_IMAGE_H
#define DICTIONARY_OPEN_IMAGE_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include "ImageBytes.h"
#include "ImageFormat.h"
#include "KeyIndex.h"

namespace Dictionary {

// Any number of handles, on any number of threads, may share one.
class OpenImage {
public:
    // Throws a Failure, without a file name, unless the bytes are an image and no lookup reads
    // outside it.
    explicit OpenImage(ImageBytes bytes);

    const ImageView& view() const { return m_view; }
    std::string_view bytes() const { return m_bytes.view(); }
    std::int64_t cellCount() const { return cellBytesOf(m_header) / kCellBytes; }
    std::int32_t featureBytes() const { return featureBytesOf(m_header); }

    // Whether keys, and what is looked up, are folded.
    bool isFolded() const { return m_isFolded; }
    // The first call takes one pass over the cells.
    std::uint64_t keyCount() const;
    // The first call makes the index; see KeyIndex.h for what that takes.
    const KeyIndex& keyIndex() const;
    // Whether a feature record begins at byte `offset` of the feature area. The first call takes
    // one pass over the area, and memory for one bit per byte of it.
    bool isRecord(std::uint32_t offset) const;

private:
    std::uint64_t countKeys() const;
    void findRecords() const;

    const ImageBytes m_bytes;
    const Cell m_header;
    const ImageView m_view;
    const bool m_isFolded;
    // Counting it twice does no harm.
    mutable std::atomic<std::uint64_t> m_keyCount;
    mutable std::once_flag m_keysIndexed;
    mutable std::unique_ptr<const KeyIndex> m_keyIndex;
    mutable std::once_flag m_recordsFound;
    mutable std::vector<bool> m_isRecord;  // by byte of the area
};

// Throws a Failure unless the bytes are an image and no lookup reads outside it.
void requireSoundImage(std::string_view bytes);

// Throws the fault of every image of `size` bytes if there is one.
void requireImageSize(std::size_t size);

}  // namespace Dictionary

#endif
