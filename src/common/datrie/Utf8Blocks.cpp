#include "Utf8Blocks.h"

#include <algorithm>
#include <cstring>

#include "Kernel.h"
#include "Utf8Decoder.h"

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace Dictionary {

namespace {

void decodeOneByOne(const char* text, std::size_t size, Utf8Progress& done, std::int32_t* codes,
                    std::int32_t* ends) {
    const std::size_t first = done.bytes;
    std::size_t count = done.characters;
    const auto take = [&](std::int32_t code, std::size_t start, std::uint32_t length) {
        if (code >= kBmpEnd) return false;
        codes[count] = code;
        ends[count++] = static_cast<std::int32_t>(first + start + length);
        return true;
    };
    done.bytes += decodeUtf8While(text + first, size - first, take);
    done.characters = count;
}

#ifdef __x86_64__

// The bytes of a block, one per lane of 16 bits.
constexpr std::size_t kBlock = 32;
static_assert(kBlock == kUtf8BlockOverrun, "all lanes are written");

// Where the character that begins at byte n ends if it has one byte.
alignas(64) constexpr std::uint16_t kNext[kBlock] = {1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11,
                                                     12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22,
                                                     23, 24, 25, 26, 27, 28, 29, 30, 31, 32};

// For each byte of a block, the character that would begin there.
struct Block {
    __m512i codes;
    __m512i ends;          // offsets in the block
    std::uint32_t begins;  // one bit per byte: whether one does begin there
    std::uint64_t goesOn;  // and whether one goes on there, also in the next block
};

[[gnu::target("avx512bw,avx512vl,avx512vbmi2")]] inline __m512i all(unsigned value) {
    return _mm512_set1_epi16(static_cast<short>(value));
}

// Whether each of `values` is at least `first` and below `end`.
[[gnu::target("avx512bw,avx512vl,avx512vbmi2")]] inline __mmask32 areIn(__m512i values,
                                                                        unsigned first,
                                                                        unsigned end) {
    return _mm512_cmplt_epu16_mask(_mm512_sub_epi16(values, all(first)), all(end - first));
}

// Loads the bytes whose bits in `there` are set. The others are not read, and their lanes are 0.
[[gnu::target("avx512bw,avx512vl,avx512vbmi2")]] inline __m512i loadBytes(const char* bytes,
                                                                          std::uint64_t there) {
    return _mm512_cvtepu8_epi16(_mm256_maskz_loadu_epi8(static_cast<__mmask32>(there), bytes));
}

[[gnu::target("avx512bw,avx512vl,avx512vbmi2"), gnu::always_inline]] inline Block decodeBlock(
    const char* bytes, std::uint64_t there) {
    const __m512i first = loadBytes(bytes, there);
    // Of a continuation byte, this leaves its six bits.
    const __m512i second = _mm512_xor_si512(loadBytes(bytes + 1, there >> 1), all(0x80));
    const __m512i third = _mm512_xor_si512(loadBytes(bytes + 2, there >> 2), all(0x80));
    const __mmask32 hasSecond = areIn(second, 0, 0x40);
    const __mmask32 hasThird = hasSecond & areIn(third, 0, 0x40);

    const __m512i ofTwo =
        _mm512_or_si512(_mm512_slli_epi16(_mm512_and_si512(first, all(0x1F)), 6), second);
    const __m512i ofThree = _mm512_or_si512(
        _mm512_or_si512(_mm512_slli_epi16(first, 12), _mm512_slli_epi16(second, 6)), third);
    const __mmask32 isTwo = hasSecond & areIn(first, 0xC2, 0xE0);
    const __mmask32 isThree = hasThird & areIn(first, 0xE0, 0xF0) & areIn(ofThree, 0x800, kBmpEnd) &
                              ~areIn(ofThree, 0xD800, 0xE000);
    const __mmask32 isLong = isTwo | isThree;

    const __m512i next = _mm512_load_si512(kNext);
    const __m512i afterTwo = _mm512_mask_add_epi16(next, isLong, next, all(1));
    return {_mm512_mask_mov_epi16(_mm512_mask_mov_epi16(first, isTwo, ofTwo), isThree, ofThree),
            _mm512_mask_add_epi16(afterTwo, isThree, afterTwo, all(1)),
            areIn(first, 0, 0x80) | isLong,
            std::uint64_t{isLong} << 1 | std::uint64_t{isThree} << 2};
}

// Writes the lanes in `which` as integers, each increased by `by`, one after the other.
[[gnu::target("avx512bw,avx512vl,avx512vbmi2"), gnu::always_inline]] inline void write(
    __m512i lanes, std::uint32_t which, std::size_t by, std::int32_t* to) {
    constexpr __mmask32 kLowHalves = 0x55555555;
    constexpr int kWords = kBlock / 2;
    const __m512i front = _mm512_maskz_compress_epi16(which, lanes);
    const __m512i more = _mm512_set1_epi32(static_cast<int>(by));
    __m512i numbers = _mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    for (std::int32_t* const half : {to, to + kWords}) {
        const __m512i words = _mm512_maskz_permutexvar_epi16(kLowHalves, numbers, front);
        _mm512_storeu_si512(half, _mm512_add_epi32(words, more));
        numbers = _mm512_add_epi32(numbers, _mm512_set1_epi32(kWords));
    }
}

// A block waits for the one before it only to know where to write its characters. Bits say where a
// character of one block goes on in the next.
[[gnu::target("avx512bw,avx512vl,avx512vbmi2,popcnt")]] void decodeAvx512(const char* text,
                                                                          std::size_t size,
                                                                          Utf8Progress& done,
                                                                          std::int32_t* codes,
                                                                          std::int32_t* ends) {
    constexpr std::size_t kBits = 64;
    std::size_t count = done.characters;
    std::uint64_t goesOn = 0;
    for (std::size_t at = done.bytes; at < size; at += kBlock) {
        const std::size_t left = size - at;
        const std::uint64_t there = ~std::uint64_t{0} >> (left < kBits ? kBits - left : 0);
        const Block block = decodeBlock(text + at, there);
        goesOn = goesOn >> kBlock | block.goesOn;
        const auto wrong = static_cast<std::uint32_t>(there & ~(block.begins | goesOn));
        const std::uint32_t legal = static_cast<std::uint32_t>(there) & ((wrong & -wrong) - 1);
        const std::uint32_t begins = block.begins & legal;
        write(block.codes, begins, 0, codes + count);
        write(block.ends, begins, at, ends + count);
        count += static_cast<std::size_t>(__builtin_popcount(begins));
        if (wrong == 0) continue;
        done = {at + static_cast<std::size_t>(__builtin_ctz(wrong)), count};
        return;
    }
    done = {size, count};
}

#endif

}  // namespace

DecodeUtf8Blocks utf8Blocks() {
#ifdef __x86_64__
    if (movesBytesTogether()) return decodeAvx512;
#endif
    return decodeOneByOne;
}

}  // namespace Dictionary
