// Images as commands open them: verified before anything is looked up or read.

#ifndef DICTOOL_IMAGE_H
#define DICTOOL_IMAGE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Buffer.h"
#include "DATChecked.h"
#include "ImageFormat.h"
#include "Report.h"

namespace dictool {

// What a refused image makes the command end with.
Failure imageFailure(const std::string& file, const DictionaryImageFault& fault);

// An image to look up in. Throws Failure when the file holds none.
class Handle {
public:
    explicit Handle(const std::string& file);
    ~Handle();
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    const void* get() const { return m_handle; }

private:
    void* m_handle;
};

// An image to look into. Throws Failure when the file holds none.
class Image {
public:
    explicit Image(const std::string& file);
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    const std::string& file() const { return m_file; }
    std::string_view bytes() const { return m_bytes.text(); }
    std::int32_t cellCount() const {
        return Dictionary::cellBytesOf(header()) / Dictionary::kCellBytes;
    }
    std::int32_t featureBytes() const { return Dictionary::featureBytesOf(header()); }

    // The cells from 1 on; cell 0 is the header.
    Dictionary::Cell cell(std::int32_t index) const { return m_view.cells()[index]; }
    bool isUsed(std::int32_t index) const {
        return cell(index).check != Dictionary::kFreeImageCheck;
    }
    // The data text that a cell refers to; empty when it refers to none.
    std::string_view data(const Dictionary::Cell& cell) const {
        return m_view.featureText(cell.feature);
    }

private:
    Dictionary::Cell header() const { return Dictionary::headerOf(m_bytes.data()); }

    std::string m_file;
    Buffer m_bytes;
    Dictionary::ImageView m_view;
};

}  // namespace dictool

#endif
