// Helper, not installed: whether bytes in memory are a dictionary image that no lookup leaves.

#ifndef DICTIONARY_IMAGE_CHECK_H
#define DICTIONARY_IMAGE_CHECK_H

#include <cstddef>
#include <cstdint>

#include "DATChecked.h"

namespace Dictionary {

// A fault that lies at no cell and no byte.
DictionaryImageFault faultOf(DictionaryImageCode code, int systemError, const char* text);
inline DictionaryImageFault noFault() {
    return faultOf(DICTIONARY_IMAGE_OK, 0, "the image is sound");
}

// Whether there are images of `size` bytes.
bool canBeImageSize(std::size_t size);

// The first fault of the `size` bytes at `image`, built over codes from 1 to below `alphabetSize`,
// or noFault(). Throws nothing but the allocator's exception.
DictionaryImageFault checkImage(const void* image, std::size_t size, std::int32_t alphabetSize);

}  // namespace Dictionary

#endif
