#include "UnicodeConversion.h"

namespace {

constexpr uint32_t kReplacement = 0xFFFD;
constexpr uint32_t kLargestBmp = 0xFFFF;
constexpr uint32_t kLargestLegal = 0x10FFFF;

constexpr uint32_t kFirstHighSurrogate = 0xD800;
constexpr uint32_t kFirstLowSurrogate = 0xDC00;
constexpr uint32_t kLastSurrogate = 0xDFFF;
constexpr int kSurrogateShift = 10;
constexpr uint32_t kSurrogateBase = 0x10000;
constexpr uint32_t kSurrogateMask = 0x3FF;

constexpr int kContinuationShift = 6;
constexpr uint8_t kFirstContinuation = 0x80;
constexpr uint8_t kLastContinuation = 0xBF;
constexpr uint8_t kFirstMultiByteLead = 0xC2;  // 0xC0 and 0xC1 would only begin overlong forms
constexpr uint8_t kLastMultiByteLead = 0xF4;   // what follows would lie above U+10FFFF

// The number of continuation bytes that a lead byte announces, by its upper six bits.
constexpr signed char kTrailingBytes[64] = {
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 4, 5};
constexpr int kTrailingBytesShift = 2;

// What the marker bits of a form of 1 to 4 bytes add up to when its bytes are shifted together.
constexpr uint32_t kMarkerSum[] = {0, 0, 0x3080, 0xE2080, 0x3C82080};

// The marker bits of the lead byte of a form of 1 to 4 bytes.
constexpr uint8_t kLeadMark[] = {0, 0, 0xC0, 0xE0, 0xF0};

// A character as read: its value and how many units of the source it takes.
struct Character {
    uint32_t value;
    int units;
};

bool isHighSurrogate(uint32_t value) {
    return value >= kFirstHighSurrogate && value < kFirstLowSurrogate;
}

bool isLowSurrogate(uint32_t value) {
    return value >= kFirstLowSurrogate && value <= kLastSurrogate;
}

bool isSurrogate(uint32_t value) {
    return isHighSurrogate(value) || isLowSurrogate(value);
}

uint32_t joinSurrogates(uint32_t high, uint32_t low) {
    return ((high - kFirstHighSurrogate) << kSurrogateShift) + (low - kFirstLowSurrogate) +
           kSurrogateBase;
}

// The length in bytes of the form that `lead` announces, 1 to 6.
int announcedLength(uint8_t lead) {
    return kTrailingBytes[lead >> kTrailingBytesShift] + 1;
}

bool isContinuation(uint8_t byte) {
    return byte >= kFirstContinuation && byte <= kLastContinuation;
}

// Some lead bytes narrow the range of the byte after them, which keeps out overlong forms,
// surrogates and values above U+10FFFF.
bool isLegalSecondByte(uint8_t lead, uint8_t byte) {
    switch (lead) {
        case 0xE0:
            return byte >= 0xA0 && byte <= kLastContinuation;
        case 0xED:
            return byte >= kFirstContinuation && byte <= 0x9F;
        case 0xF0:
            return byte >= 0x90 && byte <= kLastContinuation;
        case 0xF4:
            return byte >= kFirstContinuation && byte <= 0x8F;
        default:
            return isContinuation(byte);
    }
}

// Whether the `length` bytes at `source`, as many as the first of them announces, are one legal
// character. Forms of five and six bytes never are: their lead bytes are too large.
bool isLegalUTF8(const uint8_t* source, int length) {
    const uint8_t lead = source[0];
    if (length == 1) return lead < kFirstContinuation;
    if (lead < kFirstMultiByteLead || lead > kLastMultiByteLead) return false;
    if (!isLegalSecondByte(lead, source[1])) return false;
    for (int i = 2; i < length; ++i) {
        if (!isContinuation(source[i])) return false;
    }
    return true;
}

// Legal forms hold no surrogate and nothing above U+10FFFF, so the flags have nothing to decide.
ConversionResult readCharacter(const uint8_t* source, const uint8_t* sourceEnd,
                               ConversionFlags /*flags*/, Character& character) {
    const int length = announcedLength(*source);
    if (sourceEnd - source < length) return sourceExhausted;
    if (!isLegalUTF8(source, length)) return sourceIllegal;

    uint32_t sum = 0;
    for (int i = 0; i < length; ++i) sum = (sum << kContinuationShift) + source[i];
    character = {sum - kMarkerSum[length], length};
    return conversionOK;
}

ConversionResult readCharacter(const uint16_t* source, const uint16_t* sourceEnd,
                               ConversionFlags flags, Character& character) {
    character = {*source, 1};
    if (!isSurrogate(*source)) return conversionOK;
    if (isHighSurrogate(*source)) {
        if (sourceEnd - source < 2) return sourceExhausted;
        if (isLowSurrogate(source[1])) {
            character = {joinSurrogates(source[0], source[1]), 2};
            return conversionOK;
        }
    }
    return flags == strictConversion ? sourceIllegal : conversionOK;
}

int utf8Length(uint32_t value) {
    if (value < 0x80) return 1;
    if (value < 0x800) return 2;
    return value <= kLargestBmp ? 3 : 4;
}

// The writers take values up to U+10FFFF. They return false, having done nothing, when the target
// lacks the room; otherwise they advance its cursor.
bool writeCharacter(uint32_t value, uint8_t** target, const uint8_t* targetEnd) {
    constexpr uint32_t kContinuationMask = 0x3F;
    const int length = utf8Length(value);
    if (targetEnd - *target < length) return false;

    uint8_t* const form = *target;
    for (int i = length - 1; i > 0; --i) {
        form[i] = static_cast<uint8_t>(kFirstContinuation | (value & kContinuationMask));
        value >>= kContinuationShift;
    }
    form[0] = static_cast<uint8_t>(kLeadMark[length] | value);
    *target += length;
    return true;
}

bool writeCharacter(uint32_t value, uint16_t** target, const uint16_t* targetEnd) {
    const int units = value <= kLargestBmp ? 1 : 2;
    if (targetEnd - *target < units) return false;

    if (units == 1) {
        **target = static_cast<uint16_t>(value);
    } else {
        const uint32_t rest = value - kSurrogateBase;
        (*target)[0] = static_cast<uint16_t>(kFirstHighSurrogate + (rest >> kSurrogateShift));
        (*target)[1] = static_cast<uint16_t>(kFirstLowSurrogate + (rest & kSurrogateMask));
    }
    *target += units;
    return true;
}

bool writeCharacter(uint32_t value, uint32_t** target, const uint32_t* targetEnd) {
    if (*target >= targetEnd) return false;
    *(*target)++ = value;
    return true;
}

// Converts the character at *source, which lies before sourceEnd. Moves both cursors or neither.
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
                // Kept: such a value is passed over and the rest converted all the same.
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
    return length <= sourceEnd - source && isLegalUTF8(source, length);
}
