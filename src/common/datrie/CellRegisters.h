// Helper, not installed: words of many cells in registers.

#ifndef DICTIONARY_CELL_REGISTERS_H
#define DICTIONARY_CELL_REGISTERS_H

#include <cstddef>
#include <cstdint>

#include "ImageFormat.h"

#ifdef __x86_64__
#include <immintrin.h>

namespace Dictionary {

constexpr int kWordBytes = sizeof(std::int32_t);
static_assert(kCellBytes == 3 * kWordBytes, "cells are multiplied by three to get their words");

inline const char* basesOf(const CellView& cells) {
    return cells.bytes() + offsetof(Cell, base);
}
inline const char* checksOf(const CellView& cells) {
    return cells.bytes() + offsetof(Cell, check);
}

// The same word in all sixteen lanes.
[[gnu::target("avx512f")]] inline __m512i all16(std::uint32_t word) {
    return _mm512_set1_epi32(static_cast<int>(word));
}

// The number of the first word of each of sixteen cells.
[[gnu::target("avx512f")]] inline __m512i firstWordsOf(__m512i cells) {
    return _mm512_add_epi32(cells, _mm512_add_epi32(cells, cells));
}

// Reads one word of each cell in `of` for which all bits of the lane in `which` are set. The other
// lanes become 0, and nothing is read for them. `words` is where cell 0 has that word.
[[gnu::target("avx2")]] inline __m256i gatherWords(const char* words, __m256i of, __m256i which) {
    const __m256i number = _mm256_add_epi32(of, _mm256_add_epi32(of, of));
    return _mm256_mask_i32gather_epi32(_mm256_setzero_si256(), reinterpret_cast<const int*>(words),
                                       number, which, kWordBytes);
}

// The same for sixteen cells, with one bit for each in `which`.
[[gnu::target("avx512f")]] inline __m512i gatherWords(const char* words, __m512i of,
                                                      __mmask16 which) {
    return _mm512_mask_i32gather_epi32(_mm512_setzero_si512(), which, firstWordsOf(of), words,
                                       kWordBytes);
}

// Base and check of eight cells, one half of the sixteen in `of`. One load brings both words of a
// cell.
template <int kHalf>
[[gnu::target("avx512f")]] inline __m512i gatherHalf(const CellView& cells, __m512i of,
                                                     __mmask16 which) {
    static_assert(offsetof(Cell, base) == 0 && offsetof(Cell, check) == kWordBytes, "one load");
    constexpr int kLanes = 8;
    const __m256i number = _mm512_maskz_extracti64x4_epi64(0xF, firstWordsOf(of), kHalf);
    const auto half = static_cast<__mmask8>(which >> kHalf * kLanes);
    return _mm512_mask_i32gather_epi64(_mm512_setzero_si512(), half, number, cells.bytes(),
                                       kWordBytes);
}

// Base and check of sixteen cells.
struct Links16 {
    __m512i bases;
    __m512i checks;
};

// Reads bases and checks as gatherWords does.
[[gnu::target("avx512f")]] inline Links16 gatherLinks(const CellView& cells, __m512i of,
                                                      __mmask16 which) {
    const __m512i low = gatherHalf<0>(cells, of, which);
    const __m512i high = gatherHalf<1>(cells, of, which);
    const __m512i even =
        _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
    const __m512i odd = _mm512_add_epi32(even, _mm512_set1_epi32(1));
    return {_mm512_permutex2var_epi32(low, even, high), _mm512_permutex2var_epi32(low, odd, high)};
}

}  // namespace Dictionary

#endif

#endif
