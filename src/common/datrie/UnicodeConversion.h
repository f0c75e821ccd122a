/** @file
 * Conversions between UTF-8, UTF-16 and UTF-32, with C linkage.
 *
 * The contract is that of the Unicode consortium's published reference conversions: every function
 * takes the address of a source cursor, the source's end, the address of a target cursor, the
 * target's end and a strictness flag, and returns a result code. Ends point just past the last
 * unit. On return both cursors point just past what was consumed and produced; a cursor stays
 * before a character that could not be converted, unless a function says otherwise.
 *
 * No function allocates, keeps state or reads past an end, so all may run concurrently.
 */

#ifndef DICTIONARY_UNICODE_CONVERSION_H
#define DICTIONARY_UNICODE_CONVERSION_H

#include <stdint.h>

#include "DictionaryExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/** How a conversion ended. */
typedef enum ConversionResult {
    conversionOK = 0,    /**< everything asked for was converted */
    sourceExhausted = 1, /**< the source ends inside a character */
    targetExhausted = 2, /**< the target has no room for the next character */
    sourceIllegal = 3    /**< the source holds an illegal sequence or value */
} ConversionResult;

/** What to do with unpaired surrogates and with values above U+10FFFF. */
typedef enum ConversionFlags {
    strictConversion = 0, /**< refuse them */
    lenientConversion = 1 /**< pass them on or replace them by U+FFFD, as each function says */
} ConversionFlags;

/** Converts a whole UTF-32 source. Lenient: a surrogate value and a value above U+10FFFF become
 * U+FFFD. Strict: a value above U+10FFFF is passed over and the conversion goes on, with the result
 * sourceIllegal at its end. A full target is reported before the next value is checked. */
DICTIONARY_EXPORT ConversionResult ConvertUTF32toUTF16(const uint32_t** source,
                                                       const uint32_t* sourceEnd, uint16_t** target,
                                                       uint16_t* targetEnd, ConversionFlags flags);

/** Converts a whole UTF-16 source. Lenient: an unpaired surrogate is passed on as its own value. A
 * high surrogate at the source's very end is sourceExhausted under either flag. */
DICTIONARY_EXPORT ConversionResult ConvertUTF16toUTF32(const uint16_t** source,
                                                       const uint16_t* sourceEnd, uint32_t** target,
                                                       uint32_t* targetEnd, ConversionFlags flags);

/** Converts a whole UTF-16 source. Lenient: an unpaired surrogate is written in three bytes. A high
 * surrogate at the source's very end is sourceExhausted under either flag. */
DICTIONARY_EXPORT ConversionResult ConvertUTF16toUTF8(const uint16_t** source,
                                                      const uint16_t* sourceEnd, uint8_t** target,
                                                      uint8_t* targetEnd, ConversionFlags flags);

/** Converts a whole UTF-8 source. Lenient: a decoded surrogate value and a value above U+10FFFF
 * become U+FFFD; but legal UTF-8 yields neither. */
DICTIONARY_EXPORT ConversionResult ConvertUTF8toUTF16(const uint8_t** source,
                                                      const uint8_t* sourceEnd, uint16_t** target,
                                                      uint16_t* targetEnd, ConversionFlags flags);

/** Converts at most one character per call; call again with the advanced cursors for the next.
 * Values above U+10FFFF are written as U+FFFD in three bytes; both cursors move and the result is
 * sourceIllegal. Lenient: a surrogate is written in its own three bytes. Strict: a surrogate is
 * sourceIllegal and nothing moves. At the source's end: conversionOK, nothing done. */
DICTIONARY_EXPORT ConversionResult ConvertUTF32toUTF8(const uint32_t** source,
                                                      const uint32_t* sourceEnd, uint8_t** target,
                                                      uint8_t* targetEnd, ConversionFlags flags);

/** Converts at most one character per call; call again with the advanced cursors for the next. An
 * illegal sequence is sourceIllegal, one cut off by the source's end sourceExhausted, and nothing
 * moves. At the source's end: conversionOK, nothing done. */
DICTIONARY_EXPORT ConversionResult ConvertUTF8toUTF32(const uint8_t** source,
                                                      const uint8_t* sourceEnd, uint32_t** target,
                                                      uint32_t* targetEnd, ConversionFlags flags);

/** 1 when the bytes from source on, as many as the first of them announces, are all before
 * sourceEnd and form one legal UTF-8 character, otherwise 0. */
DICTIONARY_EXPORT unsigned char isLegalUTF8Sequence(const uint8_t* source,
                                                    const uint8_t* sourceEnd);

#ifdef __cplusplus
}
#endif

#endif
