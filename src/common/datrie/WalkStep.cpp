#include "WalkStep.h"

#include <immintrin.h>

namespace Dictionary {

namespace {

void stepBaseline(const CellView& cells, const std::int32_t* codes, std::int32_t alphabet,
                  std::uint32_t mark, Walks& walks, Walks& ends) {
    const std::uint32_t count = walks.count;
    walks.count = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t start = walks.starts[i];
        const std::uint32_t cell = walks.cells[i];
        const std::int32_t code = codes[start];
        const std::int32_t base = cells.baseOf(cell);
        const bool goesOn = code < alphabet;
        const std::uint32_t child = childCell(base, code);
        const bool inside = child < cells.childLimit();
        const std::int32_t check = cells.checkOf(inside ? child : 0);
        ends.addIf(goesOn & (base < 0), start + mark, cell);
        walks.addIf(goesOn & inside & (check == static_cast<std::int32_t>(cell)), start, child);
    }
}

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
[[gnu::target("avx512f,popcnt")]] void stepAvx512(const CellView& cells, const std::int32_t* codes,
                                                  std::int32_t alphabet, std::uint32_t mark,
                                                  Walks& walks, Walks& ends) {
    const char* const bases = cells.bytes() + offsetof(Cell, base);
    const char* const checks = cells.bytes() + offsetof(Cell, check);
    const __m512i zero = _mm512_setzero_si512();
    const __m512i childLimit = _mm512_set1_epi32(static_cast<int>(cells.childLimit()));
    const __m512i marks = _mm512_set1_epi32(static_cast<int>(mark));
    const __m512i codeLimit = _mm512_set1_epi32(alphabet);

    const std::uint32_t count = walks.count;
    walks.count = 0;
    for (std::uint32_t i = 0; i < count; i += kLanes) {
        const std::uint32_t left = count - i;
        const auto there = static_cast<__mmask16>(left < kLanes ? (1u << left) - 1 : 0xFFFFu);
        const __m512i start = _mm512_maskz_loadu_epi32(there, walks.starts + i);
        const __m512i cell = _mm512_maskz_loadu_epi32(there, walks.cells + i);
        const __m512i code = _mm512_mask_i32gather_epi32(zero, there, start, codes, kWordBytes);
        const __m512i base =
            _mm512_mask_i32gather_epi32(zero, there, wordOf(cell), bases, kWordBytes);
        const __m512i child = _mm512_add_epi32(_mm512_maskz_abs_epi32(there, base), code);
        const __mmask16 goesOn = _mm512_mask_cmplt_epi32_mask(there, code, codeLimit);
        const __mmask16 inside = _mm512_mask_cmplt_epu32_mask(goesOn, child, childLimit);
        const __m512i check =
            _mm512_mask_i32gather_epi32(zero, inside, wordOf(child), checks, kWordBytes);
        append(ends, _mm512_mask_cmplt_epi32_mask(goesOn, base, zero),
               _mm512_add_epi32(start, marks), cell);
        append(walks, _mm512_mask_cmpeq_epi32_mask(inside, check, cell), start, child);
    }
}

constexpr WalkStepKernel kKernels[] = {{"baseline", stepBaseline}, {"avx512", stepAvx512}};

}  // namespace

WalkStepKernels walkStepKernels() {
    return {kKernels, __builtin_cpu_supports("avx512f") ? std::size_t{2} : std::size_t{1}};
}

}  // namespace Dictionary
