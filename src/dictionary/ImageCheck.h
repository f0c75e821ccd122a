// Helper, not installed: whether bytes in memory are a dictionary image that no lookup leaves.

#ifndef DICTIONARY_IMAGE_CHECK_H
#define DICTIONARY_IMAGE_CHECK_H

#include <cstddef>
#include <cstdint>

namespace Dictionary {

// The first reason against an image.
struct ImageFault {
    int code;             // a DictionaryCode
    std::int64_t cell;    // the cell at fault, or -1
    std::int64_t offset;  // the byte at fault, from the start of the image, or -1
    const char* text;     // in words
};

// Whether there are images of `size` bytes.
bool canBeImageSize(std::size_t size);

// The first fault of the `size` bytes at `image`, built over codes from 1 to below `alphabetSize`,
// or one of DICTIONARY_OK. Throws nothing but the allocator's exception.
ImageFault checkImage(const void* image, std::size_t size, std::int32_t alphabetSize);

}  // namespace Dictionary

#endif
