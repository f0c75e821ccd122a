#include "WalkTogether.h"

#include <algorithm>
#include <cstddef>

#include "CellRegisters.h"
#include "Kernel.h"
#include "WalkSteps.h"

namespace Dictionary {

namespace {

// Walks one by one, in a loop so short that everything it needs is in registers. The processor
// predicts where walks end, and is several walks ahead while it waits for a cell. But it predicts
// badly which cells end keys. So each cell is written down as a key, and overwritten if it is none.
void walkOneByOne(const CellView& cells, const GroupStart& start, WalkGroup& group) {
    const CellView image = cells;
    WalkGroup::Key* key = group.keys;
    for (std::uint32_t from = 0; from < start.characters; ++from) {
        const std::int32_t* code = start.codes + from;
        if (*code >= start.alphabet || !image.holds(*code) || !start.isOpen(from)) continue;
        auto cell = static_cast<std::uint32_t>(*code);
        std::uint32_t place = from * WalkGroup::kPlaces;
        for (std::uint32_t end = from + 1;; ++end, ++place) {
            *key = {place, cell};
            if (key->isLeft()) {
                ++key;
                break;
            }
            if (*++code >= start.alphabet) break;
            key += endsKey(image.baseOf(cell)) && start.isOpen(end) ? 1 : 0;
            if (!image.descend(cell, *code)) break;
        }
    }
    group.count = static_cast<std::uint32_t>(key - group.keys);
}

#ifdef __x86_64__

// Codes that are below it as unsigned numbers begin a walk.
std::uint32_t firstLimit(const CellView& cells, std::int32_t alphabet) {
    return std::min(cells.firstLimit(), static_cast<std::uint32_t>(std::max(alphabet, 0)));
}

constexpr unsigned kIsLeft = 1u << WalkGroup::kMaxSteps;

// Eight walks in registers.
struct Walks8 {
    static constexpr std::uint32_t kLanes = 8;

    // A lane with all bits set means yes.
    __m256i areOn;
    __m256i cells;
    __m256i keys;

    [[gnu::target("avx2")]] void begin(const CellView& image, const GroupStart& start,
                                       std::uint32_t lane) {
        const std::uint32_t limit = firstLimit(image, start.alphabet);
        cells = load(start.codes + lane);
        areOn = _mm256_and_si256(areBelow(cells, limit), areOpen(start, lane));
        keys = _mm256_setzero_si256();
    }

    [[gnu::target("avx2")]] void step(const CellView& image, const GroupStart& start,
                                      std::uint32_t lane, std::uint32_t steps) {
        const std::uint32_t place = lane + steps + 1;
        const __m256i base = gatherWords(basesOf(image), cells, areOn);
        const __m256i code = load(start.codes + place);
        const __m256i inAlphabet = _mm256_cmpgt_epi32(_mm256_set1_epi32(start.alphabet), code);
        const __m256i goOn = _mm256_and_si256(areOn, inAlphabet);
        const __m256i isEnd = _mm256_and_si256(goOn, areOpen(start, place));
        const __m256i isKey = _mm256_and_si256(isEnd, _mm256_srai_epi32(base, 31));
        keys = _mm256_or_si256(keys, _mm256_and_si256(isKey, all(1u << steps)));

        const __m256i child = _mm256_add_epi32(_mm256_abs_epi32(base), code);
        const __m256i areInside = _mm256_and_si256(goOn, areBelow(child, image.childLimit()));
        const __m256i check = gatherWords(checksOf(image), child, areInside);
        areOn = _mm256_and_si256(areInside, _mm256_cmpeq_epi32(check, cells));
        cells = child;
    }

    [[gnu::target("avx2,popcnt")]] int left() const {
        const int lanes = _mm256_movemask_ps(_mm256_castsi256_ps(areOn));
        return __builtin_popcount(static_cast<unsigned>(lanes));
    }

    [[gnu::target("avx2")]] void storeCells(std::uint32_t* to) const {
        _mm256_store_si256(reinterpret_cast<__m256i*>(to), cells);
    }

    [[gnu::target("avx2")]] void storeKeys(std::uint8_t* to) const {
        const __m256i isLeft = _mm256_and_si256(areOn, all(kIsLeft));
        const __m256i words = _mm256_or_si256(keys, isLeft);
        const __m128i halves =
            _mm_packus_epi32(_mm256_castsi256_si128(words), _mm256_extracti128_si256(words, 1));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(halves, halves));
    }

private:
    [[gnu::target("avx2")]] static __m256i load(const std::int32_t* words) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(words));
    }

    [[gnu::target("avx2")]] static __m256i all(std::uint32_t value) {
        return _mm256_set1_epi32(static_cast<int>(value));
    }

    [[gnu::target("avx2")]] static __m256i areBelow(__m256i values, std::uint32_t limit) {
        const __m256i sign = all(0x80000000u);
        return _mm256_cmpgt_epi32(all(limit ^ 0x80000000u), _mm256_xor_si256(values, sign));
    }

    [[gnu::target("avx2")]] static __m256i areOpen(const GroupStart& start, std::uint32_t place) {
        if (start.closed == nullptr) return _mm256_set1_epi32(-1);
        const auto* const from = reinterpret_cast<const __m128i*>(start.closed + place);
        const __m256i closed = _mm256_cvtepu8_epi32(_mm_loadl_epi64(from));
        return _mm256_cmpeq_epi32(closed, _mm256_setzero_si256());
    }
};

// Sixteen walks in registers.
struct Walks16 {
    static constexpr std::uint32_t kLanes = 16;

    __mmask16 areOn;
    __m512i cells;
    __m512i bases;
    __m512i keys;

    [[gnu::target("avx512f")]] void begin(const CellView& image, const GroupStart& start,
                                          std::uint32_t lane) {
        const std::uint32_t limit = firstLimit(image, start.alphabet);
        cells = _mm512_loadu_si512(start.codes + lane);
        areOn = _mm512_mask_cmplt_epu32_mask(areOpen(start, lane), cells, all16(limit));
        bases = gatherWords(basesOf(image), cells, areOn);
        keys = _mm512_setzero_si512();
    }

    [[gnu::target("avx512f")]] void step(const CellView& image, const GroupStart& start,
                                         std::uint32_t lane, std::uint32_t steps) {
        const std::uint32_t place = lane + steps + 1;
        const __m512i code = _mm512_loadu_si512(start.codes + place);
        const __m512i alphabet = _mm512_set1_epi32(start.alphabet);
        const __mmask16 goOn = _mm512_mask_cmplt_epi32_mask(areOn, code, alphabet);
        const __mmask16 isEnd = goOn & areOpen(start, place);
        const __mmask16 isKey = _mm512_mask_cmplt_epi32_mask(isEnd, bases, _mm512_setzero_si512());
        keys = _mm512_mask_or_epi32(keys, isKey, keys, all16(1u << steps));

        const __m512i child = _mm512_add_epi32(_mm512_maskz_abs_epi32(areOn, bases), code);
        const __mmask16 areInside =
            _mm512_mask_cmplt_epu32_mask(goOn, child, all16(image.childLimit()));
        const Links16 links = gatherLinks(image, child, areInside);
        areOn = _mm512_mask_cmpeq_epi32_mask(areInside, links.checks, cells);
        bases = links.bases;
        cells = child;
    }

    [[gnu::target("popcnt")]] int left() const { return __builtin_popcount(areOn); }

    [[gnu::target("avx512f")]] void storeCells(std::uint32_t* to) const {
        _mm512_store_si512(to, cells);
    }

    [[gnu::target("avx512f")]] void storeKeys(std::uint8_t* to) const {
        const __m512i words = _mm512_mask_or_epi32(keys, areOn, keys, all16(kIsLeft));
        _mm_store_si128(reinterpret_cast<__m128i*>(to), _mm512_maskz_cvtepi32_epi8(0xFFFF, words));
    }

private:
    [[gnu::target("avx512f")]] static __mmask16 areOpen(const GroupStart& start,
                                                        std::uint32_t place) {
        if (start.closed == nullptr) return 0xFFFF;
        const auto* const from = reinterpret_cast<const __m128i*>(start.closed + place);
        const __m512i closed = _mm512_maskz_cvtepu8_epi32(0xFFFF, _mm_loadu_si128(from));
        return _mm512_cmpeq_epi32_mask(closed, _mm512_setzero_si512());
    }
};

// Inlined into one caller per width, which sets the instructions that may be used. The image and
// the start are copies, so that the compiler knows that no write to the steps changes them.
template <class Walks>
[[gnu::always_inline]] inline void walk(const CellView image, const GroupStart start,
                                        WalkSteps& found) {
    constexpr std::uint32_t kRegisters = WalkGroup::kWalks / Walks::kLanes;
    Walks walks[kRegisters];
    for (std::uint32_t i = 0; i < kRegisters; ++i) walks[i].begin(image, start, i * Walks::kLanes);
    int left = 1;
    for (std::uint32_t steps = 0; left > 0 && steps < WalkGroup::kMaxSteps; ++steps) {
        left = 0;
#pragma GCC unroll 8
        for (std::uint32_t i = 0; i < kRegisters; ++i) {
            if (walks[i].left() == 0) continue;  // for example after the end of a short text
            walks[i].storeCells(found.cells[steps] + i * Walks::kLanes);
            walks[i].step(image, start, i * Walks::kLanes, steps);
            left += walks[i].left();
        }
    }
    for (std::uint32_t i = 0; i < kRegisters; ++i) {
        walks[i].storeCells(found.cells[WalkGroup::kMaxSteps] + i * Walks::kLanes);
        walks[i].storeKeys(found.keys + i * Walks::kLanes);
    }
}

[[gnu::target("avx2,popcnt")]] void walkAvx2(const CellView& image, const GroupStart& start,
                                             WalkGroup& group) {
    WalkSteps steps;
    walk<Walks8>(image, start, steps);
    listByBits(steps, group);
}

template <void (*kList)(const WalkSteps&, WalkGroup&)>
[[gnu::target("avx512f,popcnt")]] void walkAvx512(const CellView& image, const GroupStart& start,
                                                  WalkGroup& group) {
    WalkSteps steps;
    walk<Walks16>(image, start, steps);
    kList(steps, group);
}

constexpr WalkTogether kWalks[kKernelCount] = {walkOneByOne, walkAvx2, walkAvx512<listByBits>};
#else
constexpr WalkTogether kWalks[kKernelCount] = {walkOneByOne};
#endif

}  // namespace

WalkTogether walkTogether() {
#ifdef __x86_64__
    if (movesBytesTogether()) return walkAvx512<listByRegisters>;
#endif
    return forThisMachine(kWalks);
}

}  // namespace Dictionary
