// An image to look into, verified before anything in it is read.

#ifndef DICTOOL_IMAGE_H
#define DICTOOL_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Buffer.h"
#include "Dictionary.hpp"
#include "ImageFormat.h"

namespace dictool {

class Image {
public:
    // Throws Failure when the file is not an image.
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
    Dictionary::Cell cell(std::int32_t index) const {
        const DictionaryCell cell =
            dictionaryCellAt(m_image.handle(), 0, static_cast<std::uint64_t>(index));
        return {cell.base, cell.check, cell.feature};
    }
    bool isUsed(std::int32_t index) const {
        return cell(index).check != Dictionary::kFreeImageCheck;
    }
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

}  // namespace dictool

#endif
