// Helper, not installed: decodes UTF-8 into arrays, many characters at a time where the machine has
// registers for it.

#ifndef DICTIONARY_UTF8_BLOCKS_H
#define DICTIONARY_UTF8_BLOCKS_H

#include <cstddef>
#include <cstdint>

namespace Dictionary {

// How far a text has been decoded.
struct Utf8Progress {
    std::size_t bytes = 0;
    std::size_t characters = 0;
};

// Decodes the text of `size` bytes from `done` on. Moves `done` to the end, or to the first byte
// that does not begin a character below kBmpEnd. Writes the code of each character, and the offset
// in the text where it ends, at the index that is its number.
using DecodeUtf8Blocks = void (*)(const char* text, std::size_t size, Utf8Progress& done,
                                  std::int32_t* codes, std::int32_t* ends);

// Up to this many more places may be written.
constexpr std::size_t kUtf8BlockOverrun = 32;

// The function of the kernel in use.
DecodeUtf8Blocks utf8Blocks();

}  // namespace Dictionary

#endif
