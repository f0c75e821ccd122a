#include "FirstFit.h"

#include <algorithm>
#include <cstring>

#include "Kernel.h"

namespace Dictionary {

namespace {

// A register of `Bytes` bytes as 64-bit lanes.
template <std::size_t Bytes>
using Lanes __attribute__((vector_size(Bytes))) = std::uint64_t;

constexpr std::size_t kLaneBytes = sizeof(std::uint64_t);

// Testing for zero costs more than reading a stream. And a position that is free in many streams is
// probably free in the next ones, too, so tests become rarer.
constexpr std::size_t kBetweenTests = 4;

// Inlined into one caller per width, which sets the instructions that may be used.
template <std::size_t Bytes>
[[gnu::always_inline]] inline void load(Lanes<Bytes>& lanes, const std::uint8_t* from) {
    std::memcpy(&lanes, from, Bytes);
}

template <std::size_t Bytes>
[[gnu::always_inline]] inline bool isZero(const Lanes<Bytes>& lanes) {
    if constexpr (Bytes > 2 * kLaneBytes) {
        Lanes<Bytes / 2> halves[2];
        std::memcpy(halves, &lanes, Bytes);
        return isZero<Bytes / 2>(halves[0] | halves[1]);
    } else {
        return (lanes[0] | lanes[1]) == 0;
    }
}

template <std::size_t Bytes>
[[gnu::always_inline]] inline std::int64_t firstBit(const Lanes<Bytes>& lanes) {
    std::int64_t position = 0;
    for (std::size_t lane = 0; lane < Bytes / kLaneBytes; ++lane) {
        if (lanes[lane] != 0) return position + __builtin_ctzll(lanes[lane]);
        position += 64;
    }
    return position;
}

template <std::size_t Bytes>
[[gnu::always_inline]] inline std::int64_t search(const std::vector<const std::uint8_t*>& streams) {
    const std::size_t count = streams.size();
    for (std::size_t byte = 0;; byte += Bytes) {
        Lanes<Bytes> fitting;
        load<Bytes>(fitting, streams[0] + byte);
        std::size_t i = 1;
        while (i < count && !isZero<Bytes>(fitting)) {
            const std::size_t stop = std::min(count, i + i / 2 + kBetweenTests);
            for (; i < stop; ++i) {
                Lanes<Bytes> bits;
                load<Bytes>(bits, streams[i] + byte);
                fitting &= bits;
            }
        }
        if (!isZero<Bytes>(fitting)) {
            return static_cast<std::int64_t>(byte * 8) + firstBit<Bytes>(fitting);
        }
    }
}

using Streams = std::vector<const std::uint8_t*>;

std::int64_t searchBaseline(const Streams& streams) {
    return search<16>(streams);
}

#ifdef __x86_64__
[[gnu::target("avx2")]] std::int64_t searchAvx2(const Streams& streams) {
    return search<32>(streams);
}

[[gnu::target("avx512f")]] std::int64_t searchAvx512(const Streams& streams) {
    return search<64>(streams);
}
#else
constexpr std::nullptr_t searchAvx2 = nullptr;
constexpr std::nullptr_t searchAvx512 = nullptr;
#endif

constexpr std::int64_t (*kSearches[kKernelCount])(const Streams&) = {searchBaseline, searchAvx2,
                                                                     searchAvx512};

}  // namespace

std::int64_t firstFit(const std::vector<const std::uint8_t*>& streams) {
    return forThisMachine(kSearches)(streams);
}

}  // namespace Dictionary
