// The image that a command searches, or several as one.

#ifndef DICTOOL_DICTIONARIES_H
#define DICTOOL_DICTIONARIES_H

#include <optional>
#include <string>
#include <vector>

#include "Dictionary.hpp"

namespace dictool {

class Dictionaries {
public:
    // Throws dictionary::Error when a file is not an image. Where several images have a key, the
    // last of them counts.
    Dictionaries(const std::string& file, const std::vector<std::string>& moreFiles) {
        m_images.push_back(dictionary::Image::open(file));
        for (const std::string& more : moreFiles) {
            m_images.push_back(dictionary::Image::open(more));
        }
        if (moreFiles.empty()) return;
        std::vector<const dictionary::Image*> images;
        for (const dictionary::Image& image : m_images) images.push_back(&image);
        m_set = dictionary::Image::set(images);
    }

    const dictionary::Image& get() const { return m_set ? *m_set : m_images.front(); }

private:
    std::vector<dictionary::Image> m_images;
    std::optional<dictionary::Image> m_set;
};

}  // namespace dictool

#endif
