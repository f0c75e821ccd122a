#include "UnicodeConversion.h"

#include <cstddef>

#include "Utf8Decoder.h"
#include "Utf8Encoder.h"

namespace {

using Dictionary::isSurrogate;

constexpr uint32_t kReplacement = 0xFFFD;
constexpr uint32_t kLargestBmp = 0xFFFF;
constexpr uint32_t kLargestLegal = 0x10FFFF;

// The number of continuation bytes that a lead byte announces, by its upper six bits.
constexpr signed char kTrailingBytes[64] = {
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 4, 5};
constexpr int kTrailingBytesShift = 2;

// A character as read: its value and how many units of the source it takes.
struct Character {
    uint32_t value;
    int units;
};

// The length in bytes of the form that `lead` announces, 1 to 6.
int announcedLength(uint8_t lead) {
    return kTrailingBytes[lead >> kTrailingBytesShift] + 1;
}

// The character in the `length` bytes at `source`, as many as the first of them announces. It has
// no units when they are illegal.
Character characterIn(const uint8_t* source, int length) {
    constexpr uint8_t kFirstMultiByte = 0x80;
    if (*source < kFirstMultiByte) return {*source, 1};
    const Dictionary::Utf8Character read =
        Dictionary::decodeMultiByte(source, static_cast<std::size_t>(length));
    return {static_cast<uint32_t>(read.code), static_cast<int>(read.length)};
}

// Legal forms hold no surrogate and nothing above U+10FFFF, so the flags have nothing to decide.
ConversionResult readCharacter(const uint8_t* source, const uint8_t* sourceEnd,
                               ConversionFlags /*flags*/, Character& character) {
    const int length = announcedLength(*source);
    if (sourceEnd - source < length) return sourceExhausted;
    character = characterIn(source, length);
    return character.units == 0 ? sourceIllegal : conversionOK;
}

ConversionResult readCharacter(const uint16_t* source, const uint16_t* sourceEnd,
                               ConversionFlags flags, Character& character) {
    character = {*source, 1};
    if (!isSurrogate(*source)) return conversionOK;
    if (Dictionary::isHighSurrogate(*source)) {
        if (sourceEnd - source < 2) return sourceExhausted;
        if (Dictionary::isLowSurrogate(source[1])) {
            character = {static_cast<uint32_t>(Dictionary::codeOfPair(source[0], source[1])), 2};
            return conversionOK;
        }
    }
    return flags == strictConversion ? sourceIllegal : conversionOK;
}

// The writers take values up to U+10FFFF. When the target lacks room, they do nothing and return
// false; otherwise they advance its cursor.
bool writeCharacter(uint32_t value, uint8_t** target, const uint8_t* targetEnd) {
    const auto code = static_cast<int32_t>(value);
    const auto length = static_cast<std::ptrdiff_t>(Dictionary::utf8Length(code));
    if (targetEnd - *target < length) return false;
    Dictionary::writeUtf8(code, reinterpret_cast<char*>(*target));
    *target += length;
    return true;
}

bool writeCharacter(uint32_t value, uint16_t** target, const uint16_t* targetEnd) {
    const int units = value <= kLargestBmp ? 1 : 2;
    if (targetEnd - *target < units) return false;
    if (units == 1) {
        **target = static_cast<uint16_t>(value);
    } else {
        const auto code = static_cast<int32_t>(value);
        (*target)[0] = static_cast<uint16_t>(Dictionary::highSurrogateOf(code));
        (*target)[1] = static_cast<uint16_t>(Dictionary::lowSurrogateOf(code));
    }
    *target += units;
    return true;
}

bool writeCharacter(uint32_t value, uint32_t** target, const uint32_t* targetEnd) {
    if (*target >= targetEnd) return false;
    *(*target)++ = value;
    return true;
}

// Converts the character at *source, which is before sourceEnd. Moves both cursors or neither.
template <typename Source, typename Target>
ConversionResult convertOne(const Source** source, const Source* sourceEnd, Target** target,
                            const Target* targetEnd, ConversionFlags flags) {
    Character character{};
    const ConversionResult result = readCharacter(*source, sourceEnd, flags, character);
    if (result != conversionOK) return result;
    if (!writeCharacter(character.value, target, targetEnd)) return targetExhausted;
    *source += character.units;
    return conversionOK;
}

template <typename Source, typename Target>
ConversionResult convertAll(const Source** source, const Source* sourceEnd, Target** target,
                            const Target* targetEnd, ConversionFlags flags) {
    ConversionResult result = conversionOK;
    while (result == conversionOK && *source < sourceEnd) {
        result = convertOne(source, sourceEnd, target, targetEnd, flags);
    }
    return result;
}

}  // namespace

ConversionResult ConvertUTF32toUTF16(const uint32_t** source, const uint32_t* sourceEnd,
                                     uint16_t** target, uint16_t* targetEnd,
                                     ConversionFlags flags) {
    ConversionResult result = conversionOK;
    for (; *source < sourceEnd; ++*source) {
        if (*target >= targetEnd) return targetExhausted;
        uint32_t value = **source;
        if (flags == strictConversion) {
            if (isSurrogate(value)) return sourceIllegal;
            if (value > kLargestLegal) {
                // Kept: such a value is skipped, and the rest is still converted.
                result = sourceIllegal;
                continue;
            }
        }
        if (isSurrogate(value) || value > kLargestLegal) value = kReplacement;
        if (!writeCharacter(value, target, targetEnd)) return targetExhausted;
    }
    return result;
}

ConversionResult ConvertUTF16toUTF32(const uint16_t** source, const uint16_t* sourceEnd,
                                     uint32_t** target, uint32_t* targetEnd,
                                     ConversionFlags flags) {
    return convertAll(source, sourceEnd, target, targetEnd, flags);
}

ConversionResult ConvertUTF16toUTF8(const uint16_t** source, const uint16_t* sourceEnd,
                                    uint8_t** target, uint8_t* targetEnd, ConversionFlags flags) {
    return convertAll(source, sourceEnd, target, targetEnd, flags);
}

ConversionResult ConvertUTF8toUTF16(const uint8_t** source, const uint8_t* sourceEnd,
                                    uint16_t** target, uint16_t* targetEnd, ConversionFlags flags) {
    return convertAll(source, sourceEnd, target, targetEnd, flags);
}

ConversionResult ConvertUTF32toUTF8(const uint32_t** source, const uint32_t* sourceEnd,
                                    uint8_t** target, uint8_t* targetEnd, ConversionFlags flags) {
    if (*source >= sourceEnd) return conversionOK;
    const uint32_t value = **source;
    if (flags == strictConversion && isSurrogate(value)) return sourceIllegal;

    const bool legal = value <= kLargestLegal;
    if (!writeCharacter(legal ? value : kReplacement, target, targetEnd)) return targetExhausted;
    ++*source;
    return legal ? conversionOK : sourceIllegal;
}

ConversionResult ConvertUTF8toUTF32(const uint8_t** source, const uint8_t* sourceEnd,
                                    uint32_t** target, uint32_t* targetEnd, ConversionFlags flags) {
    if (*source >= sourceEnd) return conversionOK;
    return convertOne(source, sourceEnd, target, targetEnd, flags);
}

unsigned char isLegalUTF8Sequence(const uint8_t* source, const uint8_t* sourceEnd) {
    if (source >= sourceEnd) return 0;
    const int length = announcedLength(*source);
    return length <= sourceEnd - source && characterIn(source, length).units != 0;
}
