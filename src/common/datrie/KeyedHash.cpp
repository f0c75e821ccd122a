#include "KeyedHash.h"

#include <unistd.h>

#include <cstddef>
#include <cstring>

namespace Dictionary {

namespace {

__extension__ using Product = unsigned __int128;

constexpr unsigned kPrimeBits = 61;
constexpr std::uint64_t kPrime = (std::uint64_t{1} << kPrimeBits) - 1;
// With points below half the prime, remainders on the way need not be brought below the prime.
constexpr std::uint64_t kPointMask = kPrime / 2;

constexpr std::size_t kPieceBytes = 7;
constexpr std::uint64_t kPieceMask = (std::uint64_t{1} << 8 * kPieceBytes) - 1;

std::uint64_t multiply(std::uint64_t value, std::uint64_t point) {
    const Product product = Product{value} * point;
    return (static_cast<std::uint64_t>(product) & kPrime) +
           static_cast<std::uint64_t>(product >> kPrimeBits);
}

// The little-endian number in up to kPieceBytes bytes. The two loads may overlap, where both read
// the same.
std::uint64_t lastPiece(std::string_view text) {
    const std::size_t size = text.size();
    constexpr std::size_t kHalf = sizeof(std::uint32_t);
    if (size >= kHalf) {
        std::uint32_t first, last;
        std::memcpy(&first, text.data(), kHalf);
        std::memcpy(&last, text.data() + size - kHalf, kHalf);
        return first | std::uint64_t{last} << 8 * (size - kHalf);
    }
    std::uint64_t piece = 0;
    for (std::size_t i = 0; i < size; ++i) {
        piece |= std::uint64_t{static_cast<unsigned char>(text[i])} << 8 * i;
    }
    return piece;
}

}  // namespace

KeyedHash::KeyedHash() {
    std::uint64_t random = 0;
    // Without randomness, an address has to do.
    if (getentropy(&random, sizeof random) != 0) random = reinterpret_cast<std::uintptr_t>(this);
    m_point = random & kPointMask;
}

std::uint32_t KeyedHash::operator()(std::string_view text) const {
    std::uint64_t value = multiply(text.size(), m_point);
    while (text.size() > kPieceBytes) {
        std::uint64_t piece;
        std::memcpy(&piece, text.data(), sizeof piece);
        value = multiply(value + (piece & kPieceMask), m_point);
        text.remove_prefix(kPieceBytes);
    }
    value = multiply(value + lastPiece(text), m_point);
    // The factor is 2^64 divided by the golden ratio. It makes the upper half depend on all bits.
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;
    return static_cast<std::uint32_t>(value * kSpread >> 32);
}

}  // namespace Dictionary
