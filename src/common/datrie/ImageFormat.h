// Helper, not installed: the layout of the dictionary image. Nothing else knows the size of a
// cell, the words of the header or the marks in a cell, and nothing else reads image bytes.
//
//   cell 0         the header: size of the feature area, its own check, offset of the area
//   cells 1..N-1   base, check, feature: 32-bit signed little-endian integers, no padding
//   feature area   length-prefixed records, see FeatureData.h

#ifndef DICTIONARY_IMAGE_FORMAT_H
#define DICTIONARY_IMAGE_FORMAT_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

namespace Dictionary {

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "Images are little-endian and are searched in place, so this library needs a "
              "little-endian machine.");

struct Cell {
    std::int32_t base;     // |base| + code is the child's cell; negative where a key ends
    std::int32_t check;    // the parent's cell
    std::int32_t feature;  // byte offset of the key's record in the feature area
};
static_assert(sizeof(Cell) == 12, "cells are packed");

constexpr std::int32_t kNoFeature = -1;
constexpr std::int32_t kRootCheck = -1;      // a child of the root, which has no cell itself
constexpr std::int32_t kFreeCheck = -2;      // a free cell while building
constexpr std::int32_t kFreeImageCheck = 0;  // a free cell in the image
constexpr Cell kFreeCell = {0, kFreeCheck, kNoFeature};

constexpr std::int32_t kCellBytes = sizeof(Cell);
constexpr std::int64_t kMaxImageBytes = std::numeric_limits<std::int32_t>::max();

// A cell as it is in the image, where the check of an untouched cell is 0.
inline Cell imageCell(Cell cell) {
    if (cell.check == kFreeCheck) cell.check = kFreeImageCheck;
    return cell;
}

inline bool endsKey(std::int32_t base) {
    return base < 0;
}
inline bool endsKey(const Cell& cell) {
    return endsKey(cell.base);
}

// The cell of the child with label `code`, if there is one. In 64 bits, so that nothing wraps.
inline std::int64_t childIndex(const Cell& parent, std::int32_t code) {
    const std::int64_t base = parent.base;
    return (base < 0 ? -base : base) + code;
}

inline Cell headerCell(std::int32_t featureBytes, std::int32_t ownCheck, std::int32_t cellBytes) {
    return {featureBytes, ownCheck, cellBytes};
}
inline std::int32_t featureBytesOf(const Cell& header) {
    return header.base;
}
inline std::int32_t cellBytesOf(const Cell& header) {
    return header.feature;
}

// The same as childIndex, to be compared with a limit: what is no number of a cell is above every
// limit.
inline std::uint32_t childCell(std::int32_t base, std::int32_t code) {
    const auto bits = static_cast<std::uint32_t>(base);
    return (base < 0 ? 0u - bits : bits) + static_cast<std::uint32_t>(code);
}

// The cells of an image in memory, which need not be aligned.
class CellView {
public:
    // Holds the whole cells of `cellBytes` bytes at `image`.
    CellView(const void* image, std::int32_t cellBytes)
        : m_image(static_cast<const char*>(image)),
          m_firstLimit(cellBytes < 0 ? 0 : cellBytes / kCellBytes),
          m_childLimit(cellBytes < kCheckOffset ? 0 : (cellBytes - kCheckOffset) / kCellBytes + 1) {
    }

    Cell operator[](std::int64_t index) const {
        Cell cell;
        std::memcpy(&cell, m_image + index * kCellBytes, sizeof cell);
        return cell;
    }

    std::int32_t baseOf(std::uint32_t index) const { return word(index, offsetof(Cell, base)); }
    std::int32_t checkOf(std::uint32_t index) const { return word(index, offsetof(Cell, check)); }
    std::int32_t featureOf(std::uint32_t index) const {
        return word(index, offsetof(Cell, feature));
    }

    const char* bytes() const { return m_image; }
    // A text's first character may lead to the cells below this one.
    std::uint32_t firstLimit() const { return static_cast<std::uint32_t>(m_firstLimit); }
    // A step to a child may lead to the cells below this one.
    std::uint32_t childLimit() const { return static_cast<std::uint32_t>(m_childLimit); }

    // Whether the code of a text's first character is the number of a cell. That is the cell that
    // the character leads to.
    bool holds(std::int32_t code) const { return static_cast<std::uint32_t>(code) < firstLimit(); }

    // The one transition rule: moves `cell` to its child with label `code` and returns true, or
    // returns false when it has none.
    // Kept: a child counts as inside if its check word begins no later than the cell array ends. So
    // if the array is not a whole number of cells, one word past it may be read.
    bool descend(std::uint32_t& cell, std::int32_t code) const {
        const std::uint32_t child = childCell(baseOf(cell), code);
        if (child >= childLimit() || checkOf(child) != static_cast<std::int32_t>(cell))
            return false;
        cell = child;
        return true;
    }

private:
    static constexpr std::int32_t kCheckOffset = offsetof(Cell, check);

    std::int32_t word(std::uint32_t index, std::size_t offset) const {
        std::int32_t word;
        std::memcpy(&word, m_image + std::size_t{index} * kCellBytes + offset, sizeof word);
        return word;
    }

    const char* m_image;
    std::int32_t m_firstLimit;  // whole cells in the array
    std::int32_t m_childLimit;  // cells that a transition may reach
};

// Calls `use(cell, feature)` for every cell that ends a key, from the first to the last.
template <class Use>
void forEachKeyCell(const CellView& cells, Use use) {
    for (std::uint32_t cell = 1; cell < cells.firstLimit(); ++cell) {
        if (endsKey(cells.baseOf(cell))) {
            use(static_cast<std::int32_t>(cell), cells.featureOf(cell));
        }
    }
}

inline Cell headerOf(const void* image) {
    return CellView(image, kCellBytes)[0];
}

// Whether the `size` bytes of an image have all the cells and features that its header counts.
inline bool isAsLongAsItSays(const void* image, std::int64_t size) {
    if (size < kCellBytes) return false;
    const Cell header = headerOf(image);
    const std::int64_t cellBytes = cellBytesOf(header);
    const std::int64_t featureBytes = featureBytesOf(header);
    return cellBytes >= 0 && cellBytes <= size && featureBytes <= size - cellBytes;
}

// A record of a feature area begins with the length of its text, which follows.
using RecordLength = std::int32_t;
constexpr std::size_t kRecordLengthBytes = sizeof(RecordLength);

inline RecordLength recordLengthAt(const char* record) {
    RecordLength length;
    std::memcpy(&length, record, sizeof length);
    return length;
}

// Calls `use(offset, bytes)` for every record of a sound feature area, with its size.
template <class Use>
void forEachRecord(std::string_view area, Use use) {
    for (std::size_t offset = 0, bytes; offset < area.size(); offset += bytes) {
        const RecordLength length = recordLengthAt(area.data() + offset);
        bytes = kRecordLengthBytes + static_cast<std::size_t>(length);
        use(offset, bytes);
    }
}

// The text of the record at byte `offset` of a feature area, up to its first NUL; empty for a
// negative offset. Valid as long as the area.
inline std::string_view featureTextAt(const char* area, std::int32_t offset) {
    if (area == nullptr || offset < 0) return {};
    const RecordLength length = recordLengthAt(area + offset);
    if (length <= 0) return {};
    const char* text = area + offset + kRecordLengthBytes;
    return {text, strnlen(text, static_cast<std::size_t>(length))};
}

// An image in memory.
class ImageView {
public:
    explicit ImageView(const void* image)
        : m_cells(image, cellBytesOf(headerOf(image))),
          m_features(static_cast<const char*>(image) + cellBytesOf(headerOf(image))) {}

    const CellView& cells() const { return m_cells; }
    std::string_view featureText(std::int32_t offset) const {
        return featureTextAt(m_features, offset);
    }
    // Prefetches the first two cache lines of a record.
    void prefetchFeature(std::int32_t offset) const {
        constexpr int kCacheLine = 64;
        __builtin_prefetch(m_features + offset);
        __builtin_prefetch(m_features + offset + kCacheLine);
    }
    // All records, one after the other.
    std::string_view featureArea() const {
        return {m_features, static_cast<std::size_t>(featureBytesOf(headerOf(m_cells.bytes())))};
    }

private:
    CellView m_cells;
    const char* m_features;
};

}  // namespace Dictionary

#endif
