// Helper, not installed: decodes UTF-8 under the coder's rules, many characters per call.

#ifndef DICTIONARY_UTF8_DECODER_H
#define DICTIONARY_UTF8_DECODER_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Dictionary {

// Keys are made of the characters of the Basic Multilingual Plane, which end here.
constexpr std::int32_t kBmpEnd = 0x10000;

// In the keys of the modern interface, a character above them is two labels: its UTF-16 surrogates.
constexpr std::int32_t kHighSurrogates = 0xD800;
constexpr std::int32_t kLowSurrogates = 0xDC00;
constexpr std::int32_t kSurrogateBits = 10;

inline std::int32_t highSurrogateOf(std::int32_t code) {
    return kHighSurrogates + ((code - kBmpEnd) >> kSurrogateBits);
}
inline std::int32_t lowSurrogateOf(std::int32_t code) {
    return kLowSurrogates | (code & ((1 << kSurrogateBits) - 1));
}
inline bool isSurrogate(std::int64_t code) {
    constexpr int kBitsOfEither = kSurrogateBits + 1;
    return code >> kBitsOfEither == kHighSurrogates >> kBitsOfEither;
}
inline bool isHighSurrogate(std::int32_t code) {
    return code >> kSurrogateBits == kHighSurrogates >> kSurrogateBits;
}
inline bool isLowSurrogate(std::int32_t code) {
    return code >> kSurrogateBits == kLowSurrogates >> kSurrogateBits;
}
inline std::int32_t codeOfPair(std::int32_t high, std::int32_t low) {
    return kBmpEnd + ((high - kHighSurrogates) << kSurrogateBits) + (low - kLowSurrogates);
}

// How many bytes of `text` to encode when `length` are asked for. A length that is 0, negative or
// too great asks for all.
inline std::size_t encodedSize(const char* text, int length) {
    const std::size_t size = std::strlen(text);
    const auto limit = static_cast<std::size_t>(length);
    return length > 0 && limit < size ? limit : size;
}

// What a legal UTF-8 sequence at `text` stands for; `length` is 0 when there is none.
struct Utf8Character {
    std::int32_t code;
    std::uint32_t length;  // in bytes
};

inline bool isContinuation(std::uint8_t byte) {
    return (byte & 0xC0u) == 0x80u;
}

// Bytes in a register, the first one lowest.
inline bool isThreeByteForm(std::uint32_t bytes) {
    return (bytes & 0xC0C0F0u) == 0x8080E0u;
}
inline std::uint32_t threeByteCode(std::uint32_t bytes) {
    return (bytes & 0x0Fu) << 12 | (bytes >> 2 & 0xFC0u) | (bytes >> 16 & 0x3Fu);
}
inline bool mayTakeThreeBytes(std::uint32_t code) {
    const bool overlong = code < 0x800;
    const bool surrogate = code - 0xD800u < 0x800u;
    return !overlong && !surrogate;
}

// Decodes one character of at least two bytes. `left` bytes of the text remain.
inline Utf8Character decodeMultiByte(const std::uint8_t* text, std::size_t left) {
    constexpr Utf8Character kIllegal = {0, 0};
    const std::uint32_t lead = text[0];
    const auto bits = [text](int i) { return static_cast<std::uint32_t>(text[i] & 0x3Fu); };
    if (lead < 0xC2) return kIllegal;
    if (lead < 0xE0) {
        if (left < 2 || !isContinuation(text[1])) return kIllegal;
        return {static_cast<std::int32_t>((lead & 0x1Fu) << 6 | bits(1)), 2};
    }
    if (lead < 0xF0) {
        if (left < 3) return kIllegal;
        const std::uint32_t bytes =
            lead | std::uint32_t{text[1]} << 8 | std::uint32_t{text[2]} << 16;
        const std::uint32_t code = threeByteCode(bytes);
        if (!isThreeByteForm(bytes) || !mayTakeThreeBytes(code)) return kIllegal;
        return {static_cast<std::int32_t>(code), 3};
    }
    if (left < 4 || !isContinuation(text[1]) || !isContinuation(text[2]) ||
        !isContinuation(text[3])) {
        return kIllegal;
    }
    const std::uint32_t code = (lead & 0x07u) << 18 | bits(1) << 12 | bits(2) << 6 | bits(3);
    const bool inRange = code - 0x10000u < 0x100000u;
    if (lead > 0xF4 || !inRange) return kIllegal;
    return {static_cast<std::int32_t>(code), 4};
}

// Decodes one character of at least two bytes where at least four bytes remain. Tries three bytes
// first: most texts that are not ASCII consist of such characters.
inline Utf8Character decodeMultiByteOfFour(const std::uint8_t* text) {
    std::uint32_t bytes;
    std::memcpy(&bytes, text, sizeof bytes);
    const std::uint32_t code = threeByteCode(bytes);
    if (isThreeByteForm(bytes) && mayTakeThreeBytes(code)) {
        return {static_cast<std::int32_t>(code), 3};
    }
    return decodeMultiByte(text, sizeof bytes);
}

// Calls `emit(code, start, 1)` for ASCII characters from `start` on, where there is at least one:
// for as many whole blocks as follow, or else for that one. Returns where they end.
template <class Emit>
std::size_t decodeAscii(const std::uint8_t* bytes, std::size_t start, std::size_t size,
                        Emit& emit) {
    constexpr std::size_t kBlock = 16;
    constexpr std::uint64_t kHighBits = 0x8080808080808080u;
    const std::size_t first = start;
    for (; size - start >= kBlock; start += kBlock) {
        std::uint64_t halves[2];
        std::memcpy(halves, bytes + start, kBlock);
        if (((halves[0] | halves[1]) & kHighBits) != 0) break;
        std::uint8_t block[kBlock];
        std::memcpy(block, halves, kBlock);
        for (std::size_t i = 0; i < kBlock; ++i) emit(std::int32_t{block[i]}, start + i, 1u);
    }
    if (start != first) return start;
    emit(std::int32_t{bytes[start]}, start, 1u);
    return start + 1;
}

// Calls `take(code, start, length)` for every character of the `size` bytes at `text`, up to the
// first sequence that is illegal or cut off, or the first character of several bytes for which
// `take` returns false. Returns where that is, or `size`.
template <class Take>
std::size_t decodeUtf8While(const char* text, std::size_t size, Take take) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text);
    constexpr std::size_t kLongest = 4;
    std::size_t start = 0;
    while (start < size) {
        if (bytes[start] < 0x80) {
            start = decodeAscii(bytes, start, size, take);
            continue;
        }
        const std::size_t left = size - start;
        const Utf8Character character = left < kLongest ? decodeMultiByte(bytes + start, left)
                                                        : decodeMultiByteOfFour(bytes + start);
        if (character.length == 0 || !take(character.code, start, character.length)) break;
        start += character.length;
    }
    return start;
}

// Calls `emit(code, start, length)` for every character up to the first sequence that is illegal or
// cut off. Returns where that is, or `size`.
template <class Emit>
std::size_t decodeUtf8(const char* text, std::size_t size, Emit emit) {
    return decodeUtf8While(text, size,
                           [&](std::int32_t code, std::size_t start, std::uint32_t length) {
                               emit(code, start, length);
                               return true;
                           });
}

// The same for all bytes: one that begins no legal sequence is a character of code `illegal`.
template <class Emit>
void decodeAllUtf8(const char* text, std::size_t size, std::int32_t illegal, Emit emit) {
    for (std::size_t start = 0; start < size; ++start) {
        const auto emitHere = [&](std::int32_t code, std::size_t offset, std::uint32_t length) {
            emit(code, start + offset, length);
        };
        start += decodeUtf8(text + start, size - start, emitHere);
        if (start < size) emit(illegal, start, 1u);
    }
}

}  // namespace Dictionary

#endif
