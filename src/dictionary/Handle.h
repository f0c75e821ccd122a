// Helper, not installed: what a DictionaryHandle is.

#ifndef DICTIONARY_HANDLE_H
#define DICTIONARY_HANDLE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "Dictionary.h"
#include "LoadedImage.h"
#include "OpenImage.h"

namespace Dictionary {

// Images in the order of their numbers, from 0.
using Images = std::vector<std::shared_ptr<const OpenImage>>;

}  // namespace Dictionary

// Several handles may share an image. What is learnt about an image is kept with it.
struct DictionaryHandle final : Dictionary::LoadedImage {
    // A handle to one image.
    explicit DictionaryHandle(std::shared_ptr<const Dictionary::OpenImage> image)
        : LoadedImage(image->bytes().data(), close), images({std::move(image)}) {}
    // A set.
    explicit DictionaryHandle(Dictionary::Images several)
        : LoadedImage(nullptr, close), images(std::move(several)), isSet(true) {}

    // Null if there is no such image.
    const Dictionary::OpenImage* imageAt(std::uint32_t number) const {
        return number < images.size() ? images[number].get() : nullptr;
    }

    const Dictionary::Images images;
    const bool isSet = false;
    const bool folded = isAnyFolded();  // keys and texts of at least one image

private:
    bool isAnyFolded() const {
        return std::any_of(images.begin(), images.end(),
                           [](const auto& image) { return image->isFolded(); });
    }
    static void close(LoadedImage* handle) { delete static_cast<DictionaryHandle*>(handle); }
};

#endif
