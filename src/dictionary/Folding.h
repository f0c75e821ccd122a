// Helper, not installed: letters without their case, and ASCII without its full-width forms; see
// docs/words.md.

#ifndef DICTIONARY_FOLDING_H
#define DICTIONARY_FOLDING_H

#include <cstdint>
#include <string>
#include <string_view>

#include "UnicodeTables.h"

namespace Dictionary {

// The folded form of a character. It has the same number of UTF-16 units, but not always of UTF-8
// bytes.
inline std::int32_t folded(std::int32_t code) {
    constexpr std::uint32_t kLowHalf = 0xFFFF;
    const auto bits = static_cast<std::uint32_t>(code);
    // Kana and Han, among others. The processor predicts this branch well.
    if (bits - kFirstUnfolded <= kLastUnfolded - kFirstUnfolded) return code;
    const std::uint32_t block = bits >> kFoldingShift;
    if (block >= kFoldingBlockCount) return code;
    const std::uint32_t place = bits % (1u << kFoldingShift);
    const std::uint32_t distance =
        kFoldingDistances[std::uint32_t{kFoldingBlocks[block]} << kFoldingShift | place];
    return static_cast<std::int32_t>((bits & ~kLowHalf) | ((bits + distance) & kLowHalf));
}

// Folds the characters of a text while it is encoded, for EncodedText and MappedText.
struct FoldedCode {
    std::int32_t operator()(std::int32_t code) const { return folded(code); }
};

// Folds a text in UTF-8. Bytes that are not a legal sequence stay.
void foldUtf8(std::string_view text, std::string& result);

// The text of the first record in the feature area of a folded image. No cell refers to it. No data
// text is like it, because data ends at its first NUL.
constexpr std::string_view kFoldedMark{"\0folded", 7};

// Whether a sound image is folded.
bool isFoldedImage(const void* image);

}  // namespace Dictionary

#endif
