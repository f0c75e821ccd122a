#include "WalkSteps.h"

#include <cstddef>
#include <cstring>

#include "CellRegisters.h"

namespace Dictionary {

namespace {

// The bytes of this many walks are read at once.
constexpr std::uint32_t kWordWalks = sizeof(std::uint64_t);

std::uint64_t wordOf(const WalkSteps& steps, std::uint32_t walk) {
    std::uint64_t bits;
    std::memcpy(&bits, steps.keys + walk, sizeof bits);
    return bits;
}

#ifdef __x86_64__

constexpr std::size_t kLanes = 16;
constexpr std::uint32_t kMostKeys = WalkGroup::kWalks * WalkGroup::kPlaces;
static_assert(kMostKeys % (4 * kLanes) == 0, "registers that are stored whole fit the arrays");

// The numbers of all bits of a word.
alignas(64) constexpr std::uint8_t kBitNumbers[] = {
    0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21,
    22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43,
    44, 45, 46, 47, 48, 49, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63};

// The sixteen bytes from 16 * kQuarter on, each added to `first`.
template <int kQuarter>
[[gnu::target("avx512f")]] inline __m512i widen(__m512i bytes, __m512i first) {
    const __m128i quarter = _mm512_maskz_extracti32x4_epi32(0xF, bytes, kQuarter);
    return _mm512_add_epi32(first, _mm512_maskz_cvtepu8_epi32(0xFFFF, quarter));
}

// Writes the places of all keys in order and returns how many there are. The only branch that
// depends on the bits is for words with unusually many keys.
[[gnu::target("avx512f,avx512bw,avx512vbmi2,popcnt")]] std::uint32_t listPlaces(
    const WalkSteps& steps, std::uint32_t* places) {
    constexpr std::size_t kUsual = 2 * kLanes;
    const __m512i numbers = _mm512_load_si512(kBitNumbers);
    std::uint32_t* place = places;
    for (std::uint32_t walk = 0; walk < WalkGroup::kWalks; walk += kWordWalks) {
        const std::uint64_t bits = wordOf(steps, walk);
        const __m512i bytes = _mm512_maskz_compress_epi8(bits, numbers);
        const __m512i first = all16(walk * WalkGroup::kPlaces);
        const auto count = static_cast<std::size_t>(__builtin_popcountll(bits));
        _mm512_storeu_si512(place, widen<0>(bytes, first));
        _mm512_storeu_si512(place + kLanes, widen<1>(bytes, first));
        if (count > kUsual) {
            _mm512_storeu_si512(place + 2 * kLanes, widen<2>(bytes, first));
            _mm512_storeu_si512(place + 3 * kLanes, widen<3>(bytes, first));
        }
        place += count;
    }
    return static_cast<std::uint32_t>(place - places);
}

// The cells of the walks at the sixteen places.
[[gnu::target("avx512f")]] inline __m512i cellsAt(const WalkSteps& steps, __m512i places) {
    constexpr int kPlaceBits = 3;
    constexpr int kWalkBits = 6;
    static_assert(1u << kPlaceBits == WalkGroup::kPlaces && 1u << kWalkBits == WalkGroup::kWalks,
                  "");
    const __mmask16 yes = 0xFFFF;
    const __m512i taken = _mm512_and_si512(places, all16(WalkGroup::kPlaces - 1));
    const __m512i from = _mm512_maskz_srli_epi32(yes, places, kPlaceBits);
    const __m512i number = _mm512_add_epi32(_mm512_maskz_slli_epi32(yes, taken, kWalkBits), from);
    return _mm512_mask_i32gather_epi32(_mm512_setzero_si512(), yes, number, steps.cells,
                                       sizeof(std::uint32_t));
}

#endif

}  // namespace

// Takes eight walks at a time. Their bits, from the lowest one on, are their keys in order.
void listByBits(const WalkSteps& steps, WalkGroup& group) {
    WalkGroup::Key* key = group.keys;
    for (std::uint32_t first = 0; first < WalkGroup::kWalks; first += kWordWalks) {
        for (std::uint64_t bits = wordOf(steps, first); bits != 0; bits &= bits - 1) {
            const auto bit = static_cast<std::uint32_t>(__builtin_ctzll(bits));
            key->place = first * WalkGroup::kPlaces + bit;
            key->cell = steps.cells[key->steps()][key->from()];
            ++key;
        }
    }
    group.count = static_cast<std::uint32_t>(key - group.keys);
}

#ifdef __x86_64__
[[gnu::target("avx512f,avx512bw,avx512vbmi2,popcnt")]] void listByRegisters(const WalkSteps& steps,
                                                                            WalkGroup& group) {
    alignas(64) std::uint32_t places[kMostKeys];
    group.count = listPlaces(steps, places);
    const __m512i low = _mm512_setr_epi32(0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
    const __m512i high = _mm512_add_epi32(low, all16(kLanes / 2));
    for (std::size_t i = 0; i < group.count; i += kLanes) {
        // After the last place there may be any value; the mask makes it a valid place.
        const __m512i place = _mm512_and_si512(_mm512_load_si512(places + i), all16(kMostKeys - 1));
        const __m512i cells = cellsAt(steps, place);
        _mm512_storeu_si512(group.keys + i, _mm512_permutex2var_epi32(place, low, cells));
        _mm512_storeu_si512(group.keys + i + kLanes / 2,
                            _mm512_permutex2var_epi32(place, high, cells));
    }
}
#endif

}  // namespace Dictionary
