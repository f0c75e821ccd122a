#include "ImageCheck.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include "Dictionary.h"
#include "ImageFormat.h"
#include "SoundCells.h"
#include "Utf8Decoder.h"

namespace Dictionary {

namespace {

constexpr std::int64_t kNowhere = -1;
constexpr ImageFault kSound = {DICTIONARY_OK, kNowhere, kNowhere, "the image is sound"};

constexpr std::int64_t kLengthBytes = kRecordLengthBytes;

class Bits {
public:
    void resize(std::int64_t count) { m_words.resize(wordOf(count + kWordBits - 1)); }
    void set(std::int64_t index) { m_words[wordOf(index)] |= std::uint64_t{1} << bitOf(index); }
    bool operator[](std::int64_t index) const {
        return (m_words[wordOf(index)] >> bitOf(index) & 1) != 0;
    }
    const std::uint64_t* words() const { return m_words.data(); }

private:
    static constexpr std::int64_t kWordBits = 64;

    static std::size_t wordOf(std::int64_t index) {
        return static_cast<std::uint64_t>(index) / kWordBits;
    }
    static unsigned bitOf(std::int64_t index) {
        return static_cast<std::uint64_t>(index) % kWordBits;
    }

    std::vector<std::uint64_t> m_words;
};

// The words of a cell, by their offsets in bytes.
enum Word : std::int64_t {
    kBase = offsetof(Cell, base),
    kCheck = offsetof(Cell, check),
    kFeature = offsetof(Cell, feature)
};

// Finds out with few branches that a cell is wrong, and only then what is wrong with it. So a sound
// image is checked about as fast as memory is read.
class ImageCheck {
public:
    ImageCheck(const void* image, std::int64_t size, std::int32_t alphabetSize)
        : m_image(static_cast<const char*>(image)),
          m_size(size),
          m_alphabetSize(alphabetSize),
          m_header(headerOf(image)),
          m_count(cellBytesOf(m_header) / kCellBytes),
          m_cells(image, cellBytesOf(m_header)) {}

    ImageFault run() {
        if (headerAddsUp() && recordsFillTheArea() && reservedCellsAreRight() &&
            otherCellsAreRight()) {
            pairsAreWhole();
        }
        return m_fault;
    }

private:
    bool isText() const;
    bool headerAddsUp();
    bool recordsFillTheArea();
    bool reservedCellsAreRight();
    bool otherCellsAreRight();
    bool isRight(std::int32_t index);
    bool pairsAreWhole();
    bool findHalves(Bits& highs, Bits& lows);
    std::int64_t labelOf(std::int64_t index, const Cell& cell) const;
    bool wayUpEnds(std::int64_t from);
    void prefetchParentOf(std::int64_t index) const;

    bool isCell(std::int64_t index) const { return index >= 0 && index < m_count; }
    bool isLabel(std::int64_t distance) const { return distance >= 1 && distance < m_alphabetSize; }
    static bool isFree(const Cell& cell) { return cell.check == kFreeImageCheck; }
    static bool isBlank(const Cell& cell) {
        return (cell.base == kFreeCell.base) & (cell.feature == kFreeCell.feature);
    }
    // A base leads to another cell. In a leaf it is the negated number of the key that ends there.
    bool isBase(std::int32_t base) const {
        return base != 0 && base != std::numeric_limits<std::int32_t>::min() && base < m_count;
    }
    bool isReference(std::int32_t feature) const {
        const std::int64_t bit = std::int64_t{feature} - kNoFeature;
        return bit >= 0 && bit <= featureBytesOf(m_header) && m_references[bit];
    }
    // Either a key ends in the cell, or the cell has no feature. So at least one of the two words
    // is negative.
    bool isFilled(const Cell& cell) const {
        return isBase(cell.base) && isReference(cell.feature) && (cell.base | cell.feature) < 0;
    }
    std::int64_t distance(std::int64_t index, const Cell& parent) const {
        return index - childIndex(parent, 0);
    }

    bool refuse(int code, std::int64_t cell, std::int64_t offset, const char* text) {
        m_fault = {code, cell, offset, text};
        return false;
    }
    bool refuseWord(int code, std::int64_t cell, Word word, const char* text) {
        return refuse(code, cell, cell * kCellBytes + word, text);
    }
    bool refuseCell(std::int64_t index);

    const char* m_image;
    std::int64_t m_size;
    std::int32_t m_alphabetSize;
    Cell m_header;
    std::int32_t m_count;  // of cells
    CellView m_cells;
    bool m_hasHalves = false;
    Bits m_references;  // what a feature word may be, counted from kNoFeature
    Bits m_climbed;     // cells from which the way up is known to end
    ImageFault m_fault = kSound;
};

// A header has a word of zero bits, which no text has.
bool ImageCheck::isText() const {
    constexpr unsigned char kFirstPrintable = 0x20;
    return std::all_of(m_image, m_image + kCellBytes, [](char byte) {
        return static_cast<unsigned char>(byte) >= kFirstPrintable || byte == '\t' ||
               byte == '\n' || byte == '\r';
    });
}

bool ImageCheck::headerAddsUp() {
    const std::int32_t cellBytes = cellBytesOf(m_header);
    const std::int32_t featureBytes = featureBytesOf(m_header);
    if (isText()) {
        return refuse(DICTIONARY_IMAGE_HEADER, kNowhere, kNowhere, "this is a text, not an image");
    }
    if (cellBytes < kCellBytes || cellBytes % kCellBytes != 0) {
        return refuseWord(DICTIONARY_IMAGE_HEADER, 0, kFeature,
                          "the size of the cells in the header is not a whole number of cells");
    }
    if (featureBytes < 0 || std::int64_t{cellBytes} + featureBytes != m_size) {
        return refuseWord(DICTIONARY_IMAGE_HEADER, 0, kBase,
                          "the sizes in the header do not add up to the size of the image");
    }
    if (m_header.check == kFreeImageCheck) return true;
    return refuseWord(DICTIONARY_IMAGE_HEADER, 0, kCheck, "the header says that it is a node");
}

bool ImageCheck::recordsFillTheArea() {
    constexpr std::int64_t kAhead = 4096;
    const std::int64_t size = featureBytesOf(m_header);
    const char* const area = m_image + cellBytesOf(m_header);
    m_references.resize(size - kNoFeature);
    m_references.set(0);
    for (std::int64_t offset = 0; offset < size;) {
        __builtin_prefetch(area + std::min(offset + kAhead, size));
        const std::int64_t room = size - offset - kLengthBytes;
        const std::int64_t length = room < 0 ? room : recordLengthAt(area + offset);
        if (length < 0 || length > room) {
            return refuse(DICTIONARY_IMAGE_AREA, kNowhere, area - m_image + offset,
                          "a feature record does not end inside the area");
        }
        m_references.set(offset - kNoFeature);
        offset += kLengthBytes + length;
    }
    return true;
}

// A text's first character leads to the cell of its code, whatever the check there. So these cells
// may hold only children of the root.
bool ImageCheck::reservedCellsAreRight() {
    for (std::int32_t index = 1; index <= std::min(m_alphabetSize, m_count - 1); ++index) {
        const Cell cell = m_cells[index];
        const bool isRoot = cell.check == kRootCheck && index < m_alphabetSize;
        const bool isRight = isFree(cell) ? isBlank(cell) : isRoot && isFilled(cell);
        if (!isRight) return refuseCell(index);
        m_hasHalves |= isSurrogate(index) && !isFree(cell);
    }
    return true;
}

bool ImageCheck::otherCellsAreRight() {
    const PassSoundCells passSound = passSoundCells();
    const CellRules rules = {m_cells, static_cast<std::uint32_t>(m_alphabetSize),
                             m_references.words(),
                             static_cast<std::uint32_t>(featureBytesOf(m_header))};
    m_climbed.resize(m_count);
    for (std::int32_t index = m_alphabetSize + 1; index < m_count;) {
        index = passSound(rules, index);
        const std::int32_t end = std::min(index + kSoundGroup, m_count);
        for (; index < end; ++index) {
            if (!isRight(index)) return false;
        }
    }
    return true;
}

bool ImageCheck::isRight(std::int32_t index) {
    constexpr std::int32_t kAhead = 64;
    prefetchParentOf(std::min(index + kAhead, m_count - 1));
    const Cell cell = m_cells[index];
    if (!isCell(cell.check)) return refuseCell(index);
    // For a free cell this is the header, which is itself free.
    const Cell parent = m_cells[cell.check];
    const std::int64_t label = distance(index, parent);
    const bool isChild = isLabel(label) && !isFree(parent);
    if (!(isFree(cell) ? isBlank(cell) : isChild && isFilled(cell))) return refuseCell(index);
    m_hasHalves |= isSurrogate(label) && !isFree(cell);
    // In a cycle of parents, one cell has the lowest index: neither its parent nor its parent's
    // parent has a lower one.
    const bool mayBeLowest = (cell.check >= index) & (parent.check >= index);
    return !mayBeLowest || wayUpEnds(index);
}

// Checks that the two labels of a character above U+FFFF always come together: no key ends between
// them, only low surrogates follow a high one, and low surrogates follow nothing else.
bool ImageCheck::pairsAreWhole() {
    if (!m_hasHalves) return true;
    Bits highs, lows;
    highs.resize(m_count);
    lows.resize(m_count);
    if (!findHalves(highs, lows)) return false;
    for (std::int64_t index = 1; index < m_count; ++index) {
        const std::int32_t check = m_cells.checkOf(static_cast<std::uint32_t>(index));
        const bool isBelowHigh = check > 0 && highs[check];
        if (lows[index] == isBelowHigh) continue;
        return refuseWord(
            DICTIONARY_IMAGE_LABEL, index, kCheck,
            "the cell's label is a surrogate without the other, or comes between two");
    }
    return true;
}

bool ImageCheck::findHalves(Bits& highs, Bits& lows) {
    constexpr std::int64_t kAhead = 64;
    for (std::int64_t index = 1; index < m_count; ++index) {
        prefetchParentOf(std::min<std::int64_t>(index + kAhead, m_count - 1));
        const Cell cell = m_cells[index];
        if (isFree(cell)) continue;
        const std::int64_t label = labelOf(index, cell);
        if (!isSurrogate(label)) continue;
        const bool isLow = label >= kLowSurrogates;
        (isLow ? lows : highs).set(index);
        if (isLow || !endsKey(cell)) continue;
        return refuseWord(DICTIONARY_IMAGE_LABEL, index, kBase,
                          "a key ends between the two surrogates of a character");
    }
    return true;
}

std::int64_t ImageCheck::labelOf(std::int64_t index, const Cell& cell) const {
    return cell.check == kRootCheck ? index : distance(index, m_cells[cell.check]);
}

// Also climbs past cells that were not checked yet. They are refused, if wrong, in their turn.
bool ImageCheck::wayUpEnds(std::int64_t from) {
    const auto goesOn = [&](std::int64_t index) {
        return index > 0 && index < m_count && !m_climbed[index];
    };
    std::int64_t steps = 0;
    for (std::int64_t index = from; goesOn(index); index = m_cells[index].check) {
        if (++steps < m_count) continue;
        return refuseWord(DICTIONARY_IMAGE_PARENT, from, kCheck,
                          "the cell's parents do not lead up to the root");
    }
    for (std::int64_t index = from; goesOn(index); index = m_cells[index].check) {
        m_climbed.set(index);
    }
    return true;
}

void ImageCheck::prefetchParentOf(std::int64_t index) const {
    const std::int64_t parent = m_cells[index].check;
    __builtin_prefetch(m_image + (isCell(parent) ? parent * kCellBytes : 0));
}

// Says what is wrong with a cell that is wrong.
bool ImageCheck::refuseCell(std::int64_t index) {
    const Cell cell = m_cells[index];
    const bool free = isFree(cell);
    const bool isRoot = cell.check == kRootCheck;
    const bool reserved = index <= m_alphabetSize;
    const Cell parent = isCell(cell.check) ? m_cells[cell.check] : kFreeCell;
    const struct {
        bool holds;
        int code;
        Word word;
        const char* text;
    } faults[] = {
        {free && cell.base != kFreeCell.base, DICTIONARY_IMAGE_FREE_CELL, kBase,
         "a free cell has a base"},
        {free, DICTIONARY_IMAGE_FREE_CELL, kFeature, "a free cell has a feature"},
        {!isBase(cell.base), DICTIONARY_IMAGE_BASE, kBase, "the cell's base leads nowhere"},
        {!isReference(cell.feature), DICTIONARY_IMAGE_FEATURE, kFeature,
         "the cell's feature does not begin a record"},
        {!endsKey(cell) && cell.feature != kNoFeature, DICTIONARY_IMAGE_FEATURE, kFeature,
         "the cell has a feature, but no key ends there"},
        {reserved, DICTIONARY_IMAGE_PARENT, kCheck,
         "the cell is reserved for a first character, but has a parent"},
        {isRoot, DICTIONARY_IMAGE_PARENT, kCheck,
         "the cell has no parent, but is not that of a first character"},
        {!isCell(cell.check), DICTIONARY_IMAGE_PARENT, kCheck, "the cell's parent does not exist"},
        {isFree(parent), DICTIONARY_IMAGE_PARENT, kCheck, "the cell's parent is free"},
        {true, DICTIONARY_IMAGE_LABEL, kCheck, "the cell is out of reach of its parent's base"},
    };
    const auto* fault = faults;
    while (!fault->holds) ++fault;
    return refuseWord(fault->code, index, fault->word, fault->text);
}

}  // namespace

ImageFault checkImageSize(std::size_t size) {
    if (size > std::size_t{kMaxImageBytes}) {
        return {DICTIONARY_IMAGE_TOO_LARGE, kNowhere, kNowhere, "larger than an image can be"};
    }
    if (size < kCellBytes) {
        return {DICTIONARY_IMAGE_TOO_SHORT, kNowhere, kNowhere,
                "too short for the header of an image"};
    }
    return kSound;
}

ImageFault checkImage(const void* image, std::size_t size, std::int32_t alphabetSize) {
    const ImageFault fault = checkImageSize(image == nullptr ? 0 : size);
    if (fault.code != DICTIONARY_OK) return fault;
    return ImageCheck(image, static_cast<std::int64_t>(size), alphabetSize).run();
}

}  // namespace Dictionary
