#include "Image.h"

#include "File.h"

namespace dictool {

namespace {

dictionary::Image openBytes(const std::string& file, std::string_view bytes) {
    try {
        return dictionary::Image::openBytes(bytes, dictionary::OpenMode::borrow);
    } catch (const dictionary::Error& error) {
        throw failureOf(error.record(), file);
    }
}

}  // namespace

Image::Image(const std::string& file)
    : m_file(file),
      m_bytes(readWhole(file)),
      m_image(openBytes(file, m_bytes.text())),
      m_description(m_image.describe()) {}

}  // namespace dictool
