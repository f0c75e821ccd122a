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

// The number of the first word of each of sixteen cells.
[[gnu::target("avx512f")]] inline __m512i firstWordsOf(__m512i cells) {
    return _mm512_add_epi32(cells, _mm512_add_epi32(cells, cells));
}

// The words at `words` of the cells `of` in lanes whose bits are set in `which`; all bits of a lane
// mean yes. 0 in the others, of which nothing is read.
[[gnu::target("avx2")]] inline __m256i gatherWords(const char* words, __m256i of, __m256i which) {
    const __m256i number = _mm256_add_epi32(of, _mm256_add_epi32(of, of));
    return _mm256_mask_i32gather_epi32(_mm256_setzero_si256(), reinterpret_cast<const int*>(words),
                                       number, which, kWordBytes);
}

// The same for sixteen cells, with a bit for each.
[[gnu::target("avx512f")]] inline __m512i gatherWords(const char* words, __m512i of,
                                                      __mmask16 which) {
    return _mm512_mask_i32gather_epi32(_mm512_setzero_si512(), which, firstWordsOf(of), words,
                                       kWordBytes);
}

}  // namespace Dictionary

#endif

#endif
