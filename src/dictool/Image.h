// An image to look into, verified before anything in it is read. docs/format.md describes the
// cells.

#ifndef DICTOOL_IMAGE_H
#define DICTOOL_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Buffer.h"
#include "Dictionary.hpp"

namespace dictool {

class Image {
public:
    static constexpr std::int32_t kFreeCheck = 0;
    static constexpr std::int32_t kRootCheck = -1;  // of a child of the root

    // Throws Failure when the file holds no image.
    explicit Image(const std::string& file);
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    const std::string& file() const { return m_file; }
    const dictionary::Image& opened() const { return m_image; }
    std::string_view bytes() const { return m_bytes.text(); }
    std::int32_t cellCount() const { return static_cast<std::int32_t>(m_description.cells); }
    bool folded() const { return m_description.folded; }
    std::uint64_t featureBytes() const { return m_description.featureBytes; }

    // The cells from 1 on; cell 0 is the header.
    DictionaryCell cell(std::int32_t index) const {
        return dictionaryCellAt(m_image.handle(), 0, static_cast<std::uint64_t>(index));
    }
    bool isUsed(std::int32_t index) const { return cell(index).check != kFreeCheck; }
    // The data text of the record at byte `feature` of the feature area.
    std::string_view data(std::int32_t feature) const {
        const DictionaryText data =
            dictionaryDataAt(m_image.handle(), 0, static_cast<std::uint32_t>(feature));
        return {data.bytes, data.size};
    }

private:
    std::string m_file;
    Buffer m_bytes;
    dictionary::Image m_image;
    DictionaryDescription m_description;
};

// The cell of a child's label 0, which need not be one: that of label n is n cells further.
inline std::int32_t firstChildCell(const DictionaryCell& cell) {
    return cell.base < 0 ? -cell.base : cell.base;
}
inline bool endsKey(const DictionaryCell& cell) {
    return cell.base < 0;
}

}  // namespace dictool

#endif
