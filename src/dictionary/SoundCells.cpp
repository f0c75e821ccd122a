#include "SoundCells.h"

#include <algorithm>
#include <cstddef>

#include "CellRegisters.h"
#include "Kernel.h"
#include "Utf8Decoder.h"

namespace Dictionary {

namespace {

std::int32_t passNone(const CellRules&, std::int32_t index) {
    return index;
}

#ifdef __x86_64__

constexpr __mmask16 kAll = 0xFFFF;

// Sixteen cells in registers.
struct Cells16 {
    __m512i numbers;
    __m512i bases;
    __m512i checks;
    __m512i features;
};

[[gnu::target("avx512f")]] inline __m512i lanes() {
    return _mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
}

// One word of each of sixteen cells, whose words fill three registers.
[[gnu::target("avx512f")]] inline __m512i wordsOf(const __m512i* cells, std::size_t offset) {
    constexpr std::uint32_t kWordsOfTwo = 32;
    const auto word = static_cast<std::uint32_t>(offset / kWordBytes);
    const __m512i places = _mm512_add_epi32(firstWordsOf(lanes()), all16(word));
    const __mmask16 areInThird = _mm512_cmpge_epi32_mask(places, all16(kWordsOfTwo));
    const __m512i ofTwo = _mm512_permutex2var_epi32(cells[0], places, cells[1]);
    return _mm512_mask_permutexvar_epi32(ofTwo, areInThird, places, cells[2]);
}

[[gnu::target("avx512f")]] inline Cells16 loadCells(const CellView& cells, std::uint32_t index) {
    const char* const bytes = cells.bytes() + std::size_t{index} * kCellBytes;
    const __m512i words[] = {_mm512_loadu_si512(bytes), _mm512_loadu_si512(bytes + sizeof(__m512i)),
                             _mm512_loadu_si512(bytes + 2 * sizeof(__m512i))};
    return {_mm512_add_epi32(all16(index), lanes()), wordsOf(words, offsetof(Cell, base)),
            wordsOf(words, offsetof(Cell, check)), wordsOf(words, offsetof(Cell, feature))};
}

[[gnu::target("avx512f")]] inline __mmask16 areBlank(const Cells16& cells) {
    return _mm512_cmpeq_epi32_mask(cells.bases, all16(static_cast<std::uint32_t>(kFreeCell.base))) &
           _mm512_cmpeq_epi32_mask(cells.features,
                                   all16(static_cast<std::uint32_t>(kFreeCell.feature)));
}

[[gnu::target("avx512f")]] inline __mmask16 areBases(const CellRules& rules, __m512i bases) {
    constexpr std::uint32_t kLeast = 0x80000000u;
    return _mm512_test_epi32_mask(bases, bases) & _mm512_cmpneq_epi32_mask(bases, all16(kLeast)) &
           _mm512_cmplt_epi32_mask(bases, all16(rules.cells.firstLimit()));
}

// Of the lanes in `which`, those with a possible feature: its bit is set.
[[gnu::target("avx512f")]] inline __mmask16 areReferences(const CellRules& rules, __m512i features,
                                                          __mmask16 which) {
    constexpr unsigned kBitsOfNumber = 5;  // of a bit in its word
    const __m512i bits = _mm512_sub_epi32(features, all16(static_cast<std::uint32_t>(kNoFeature)));
    const __mmask16 areThere =
        _mm512_mask_cmple_epu32_mask(which, bits, all16(rules.lastReference));
    const __m512i places = _mm512_maskz_srli_epi32(areThere, bits, kBitsOfNumber);
    const __m512i words = _mm512_mask_i32gather_epi32(_mm512_setzero_si512(), areThere, places,
                                                      rules.references, kWordBytes);
    const __m512i shifts = _mm512_and_si512(bits, all16((1u << kBitsOfNumber) - 1));
    return _mm512_mask_test_epi32_mask(areThere, _mm512_maskz_srlv_epi32(areThere, words, shifts),
                                       all16(1));
}

// Of the cells in `which`, those that hold what a node holds: a base, the end of a key, or both.
[[gnu::target("avx512f")]] inline __mmask16 areFilled(const CellRules& rules, const Cells16& cells,
                                                      __mmask16 which) {
    const __m512i either = _mm512_or_si512(cells.bases, cells.features);
    const __mmask16 areNegative = _mm512_cmplt_epi32_mask(either, _mm512_setzero_si512());
    return areReferences(rules, cells.features, which & areNegative & areBases(rules, cells.bases));
}

// Of the cells in `which`, those that are certainly children of the cells in their checks. All of
// these exist.
[[gnu::target("avx512f")]] inline __mmask16 areChildren(const CellRules& rules,
                                                        const Cells16& cells, __mmask16 which) {
    constexpr unsigned kBitsOfHalf = kSurrogateBits + 1;
    const Links16 parents = gatherLinks(rules.cells, cells.checks, which);
    const __m512i labels =
        _mm512_sub_epi32(cells.numbers, _mm512_maskz_abs_epi32(which, parents.bases));
    const __mmask16 areLabels =
        _mm512_cmplt_epu32_mask(_mm512_sub_epi32(labels, all16(1)), all16(rules.alphabetSize - 1));
    const __mmask16 areHalves = _mm512_cmpeq_epi32_mask(
        _mm512_maskz_srli_epi32(which, labels, kBitsOfHalf), all16(kHighSurrogates >> kBitsOfHalf));
    const __mmask16 areOfFree = _mm512_cmpeq_epi32_mask(parents.checks, all16(kFreeImageCheck));
    const __mmask16 mayBeLowest = _mm512_cmpge_epi32_mask(cells.checks, cells.numbers) &
                                  _mm512_cmpge_epi32_mask(parents.checks, cells.numbers);
    return which & areLabels & ~(areHalves | areOfFree | mayBeLowest);
}

[[gnu::target("avx512f")]] inline bool areSound(const CellRules& rules, const Cells16& cells) {
    const __mmask16 areFree = _mm512_cmpeq_epi32_mask(cells.checks, all16(kFreeImageCheck));
    const __mmask16 haveParents =
        ~areFree & _mm512_cmplt_epu32_mask(cells.checks, all16(rules.cells.firstLimit()));
    const __mmask16 areFilledChildren =
        areFilled(rules, cells, areChildren(rules, cells, haveParents));
    return ((areFree & areBlank(cells)) | areFilledChildren) == kAll;
}

// Prefetches the parents, which may be anywhere, of the sixteen cells from `index` on. The cells
// may be wrong.
[[gnu::target("avx512f")]] inline void prefetchParents(const CellView& cells, std::uint32_t index) {
    const __m512i last = all16(cells.firstLimit() - 1);
    const __m512i parents = _mm512_maskz_min_epu32(kAll, loadCells(cells, index).checks, last);
    alignas(__m512i) std::uint32_t numbers[kSoundGroup];
    _mm512_store_si512(numbers, firstWordsOf(parents));
    for (const std::uint32_t number : numbers) {
        __builtin_prefetch(cells.bytes() + std::size_t{number} * kWordBytes);
    }
}

[[gnu::target("avx512f")]] std::int32_t passAvx512(const CellRules& rules, std::int32_t index) {
    constexpr std::int32_t kAhead = 64;
    const CellRules own = rules;
    const std::int32_t last = static_cast<std::int32_t>(own.cells.firstLimit()) - kSoundGroup;
    for (; index <= last; index += kSoundGroup) {
        prefetchParents(own.cells, static_cast<std::uint32_t>(std::min(index + kAhead, last)));
        if (!areSound(own, loadCells(own.cells, static_cast<std::uint32_t>(index)))) break;
    }
    return index;
}
#else
constexpr std::nullptr_t passAvx512 = nullptr;
#endif

constexpr PassSoundCells kPasses[kKernelCount] = {passNone, nullptr, passAvx512};

}  // namespace

PassSoundCells passSoundCells() {
    return forThisMachine(kPasses);
}

}  // namespace Dictionary
