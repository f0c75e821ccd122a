#include "WalkStep.h"

#include "Kernel.h"

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace Dictionary {

namespace {

#ifdef __x86_64__

constexpr std::uint32_t kLanes = 16;
constexpr int kWordBytes = sizeof(std::int32_t);
static_assert(kLanes <= kWalkStepSlack, "whole registers are written");

[[gnu::target("avx512f,popcnt")]] inline void append(Walks& walks, __mmask16 which, __m512i starts,
                                                     __m512i cells) {
    _mm512_storeu_si512(walks.starts + walks.count, _mm512_maskz_compress_epi32(which, starts));
    _mm512_storeu_si512(walks.cells + walks.count, _mm512_maskz_compress_epi32(which, cells));
    walks.count += static_cast<std::uint32_t>(__builtin_popcount(which));
}

// The first words of cells, by additions, which take less time than a multiplication.
[[gnu::target("avx512f")]] inline __m512i wordOf(__m512i cells) {
    static_assert(kCellBytes == 3 * kWordBytes, "a cell has three words");
    return _mm512_add_epi32(cells, _mm512_add_epi32(cells, cells));
}

// The same for sixteen walks at a time, whose cells are loaded together.
[[gnu::target("avx512f,popcnt")]] inline void advance(const StepGround& ground, __mmask16 there,
                                                      __m512i start, __m512i cell, __m512i code,
                                                      Walks& walks, Walks& ends) {
    const char* const bases = ground.cells.bytes() + offsetof(Cell, base);
    const char* const checks = ground.cells.bytes() + offsetof(Cell, check);
    const __m512i zero = _mm512_setzero_si512();
    const __m512i childLimit = _mm512_set1_epi32(static_cast<int>(ground.cells.childLimit()));
    const __m512i marks = _mm512_set1_epi32(static_cast<int>(ground.mark));
    const __m512i alphabet = _mm512_set1_epi32(ground.alphabet);

    const __m512i base = _mm512_mask_i32gather_epi32(zero, there, wordOf(cell), bases, kWordBytes);
    const __m512i child = _mm512_add_epi32(_mm512_maskz_abs_epi32(there, base), code);
    const __mmask16 goesOn = _mm512_mask_cmplt_epi32_mask(there, code, alphabet);
    const __mmask16 inside = _mm512_mask_cmplt_epu32_mask(goesOn, child, childLimit);
    const __m512i check =
        _mm512_mask_i32gather_epi32(zero, inside, wordOf(child), checks, kWordBytes);
    append(ends, _mm512_mask_cmplt_epi32_mask(goesOn, base, zero), _mm512_add_epi32(start, marks),
           cell);
    append(walks, _mm512_mask_cmpeq_epi32_mask(inside, check, cell), start, child);
}

__mmask16 firstLanes(std::uint32_t count) {
    return static_cast<__mmask16>(count < kLanes ? (1u << count) - 1 : 0xFFFFu);
}

[[gnu::target("avx512f,popcnt")]] void firstAvx512(const StepGround& ground, std::uint32_t count,
                                                   Walks& walks, Walks& ends) {
    const __m512i alphabet = _mm512_set1_epi32(ground.alphabet);
    const __m512i cellLimit = _mm512_set1_epi32(static_cast<int>(ground.cells.firstLimit()));
    __m512i start = _mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    for (std::uint32_t i = 0; i < count; i += kLanes) {
        const __mmask16 in = firstLanes(count - i);
        const __m512i cell = _mm512_maskz_loadu_epi32(in, ground.codes - 1 + i);
        const __m512i code = _mm512_maskz_loadu_epi32(in, ground.codes + i);
        const __mmask16 inAlphabet = _mm512_mask_cmplt_epi32_mask(in, cell, alphabet);
        const __mmask16 there = _mm512_mask_cmplt_epu32_mask(inAlphabet, cell, cellLimit);
        advance(ground, there, start, cell, code, walks, ends);
        start = _mm512_add_epi32(start, _mm512_set1_epi32(kLanes));
    }
}

[[gnu::target("avx512f,popcnt")]] void nextAvx512(const StepGround& ground, Walks& walks,
                                                  Walks& ends) {
    const __m512i zero = _mm512_setzero_si512();
    const std::uint32_t count = walks.count;
    walks.count = 0;
    for (std::uint32_t i = 0; i < count; i += kLanes) {
        const __mmask16 there = firstLanes(count - i);
        const __m512i start = _mm512_maskz_loadu_epi32(there, walks.starts + i);
        const __m512i cell = _mm512_maskz_loadu_epi32(there, walks.cells + i);
        const __m512i code =
            _mm512_mask_i32gather_epi32(zero, there, start, ground.codes, kWordBytes);
        advance(ground, there, start, cell, code, walks, ends);
    }
}

constexpr WalkSteps kAvx512Steps = {firstAvx512, nextAvx512};
constexpr const WalkSteps* kSteps[kKernelCount] = {nullptr, nullptr, &kAvx512Steps};
#else
constexpr const WalkSteps* kSteps[kKernelCount] = {};
#endif

}  // namespace

const WalkSteps* walkSteps() {
    return forThisMachine(kSteps);
}

}  // namespace Dictionary
