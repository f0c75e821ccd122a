#include "OpenImage.h"

#include <limits>
#include <utility>

#include "Errors.h"
#include "Folding.h"
#include "ImageCheck.h"
#include "UTF8Coder.h"

namespace Dictionary {

namespace {

constexpr std::uint64_t kNotCounted = std::numeric_limits<std::uint64_t>::max();

void require(const ImageFault& fault) {
    if (fault.code == DICTIONARY_OK) return;
    DictionaryError error = errorOf(fault.code, fault.text);
    error.cell = fault.cell;
    error.offset = fault.offset;
    throw Failure{error};
}

ImageBytes checked(ImageBytes bytes) {
    requireSoundImage(bytes.view());
    return bytes;
}

}  // namespace

void requireSoundImage(std::string_view bytes) {
    require(checkImage(bytes.data(), bytes.size(), CUTF8Coder().getNumOfSingleWord()));
}

void requireImageSize(std::size_t size) {
    require(checkImageSize(size));
}

OpenImage::OpenImage(ImageBytes bytes)
    : m_bytes(checked(std::move(bytes))),
      m_header(headerOf(m_bytes.view().data())),
      m_view(m_bytes.view().data()),
      m_isFolded(isFoldedImage(m_bytes.view().data())),
      m_keyCount(kNotCounted) {}

std::uint64_t OpenImage::keyCount() const {
    std::uint64_t count = m_keyCount.load(std::memory_order_relaxed);
    if (count == kNotCounted) {
        count = countKeys();
        m_keyCount.store(count, std::memory_order_relaxed);
    }
    return count;
}

std::uint64_t OpenImage::countKeys() const {
    std::uint64_t count = 0;
    forEachKeyCell(m_view.cells(), [&](std::int32_t, std::int32_t) { ++count; });
    return count;
}

const KeyIndex& OpenImage::keyIndex() const {
    std::call_once(m_keysIndexed, [this] { m_keyIndex = std::make_unique<KeyIndex>(m_view); });
    return *m_keyIndex;
}

bool OpenImage::isRecord(std::uint32_t offset) const {
    const bool isMark = m_isFolded && offset == 0;
    if (isMark || offset >= static_cast<std::uint32_t>(featureBytes())) return false;
    std::call_once(m_recordsFound, [this] { findRecords(); });
    return m_isRecord[offset];
}

void OpenImage::findRecords() const {
    const std::string_view area = m_view.featureArea();
    std::vector<bool> isRecord(area.size());
    forEachRecord(area, [&](std::size_t offset, std::size_t) { isRecord[offset] = true; });
    m_isRecord.swap(isRecord);
}

}  // namespace Dictionary
