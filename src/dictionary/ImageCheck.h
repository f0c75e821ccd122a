// Helper, not installed: checks that bytes in memory are a dictionary image and that no lookup
// reads outside it.

#ifndef DICTIONARY_IMAGE_CHECK_H
#define DICTIONARY_IMAGE_CHECK_H

#include <cstddef>
#include <cstdint>

namespace Dictionary {

// The first thing that is wrong with an image.
struct ImageFault {
    int code;             // a DictionaryCode
    std::int64_t cell;    // the cell at fault, or -1
    std::int64_t offset;  // the byte at fault, from the start of the image, or -1
    const char* text;     // in words
};

// The fault of every image of `size` bytes, or a fault of code DICTIONARY_OK.
ImageFault checkImageSize(std::size_t size);

// The first fault of the `size` bytes at `image`, or a fault of code DICTIONARY_OK. Labels are
// from 1 to below `alphabetSize`. Throws only what the allocator throws.
ImageFault checkImage(const void* image, std::size_t size, std::int32_t alphabetSize);

}  // namespace Dictionary

#endif
