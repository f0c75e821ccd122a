/** @file
 * The dictionary for hosts in C and in every language that calls C. Dictionary.hpp has the same for
 * C++.
 *
 *     DictionaryError error;
 *     DictionaryHandle* words = dictionaryOpenFile("words.bin", DICTIONARY_OPEN_MAP, &error);
 *     if (words == NULL) { ... error.text ... }
 *     DictionaryMatches matches = {0};
 *     dictionaryFindMatches(words, NULL, (DictionaryText){text, size}, &matches, &error);
 *     ...
 *     dictionaryFreeMatches(&matches);
 *     dictionaryClose(words);
 *
 * Conventions, the same for all functions:
 * - No function writes to a stream, ends the process or lets an exception out.
 * - A function that can fail returns a DictionaryCode, or a pointer that is null on failure. It
 *   also fills an error record, which has DICTIONARY_OK on success. The record may be null.
 * - Texts and keys are UTF-8 and come with their size. They need no NUL at the end and may contain
 *   NULs. Paths are NUL-terminated. Sizes and offsets are in bytes unless a unit is named. Lines,
 *   columns, items and fields are counted from 1.
 * - Some structs begin with `size`. Zero such a struct and set `size` to its sizeof, so that later
 *   versions can add members. Any other size is DICTIONARY_BAD_ARGUMENT. Null stands for such a
 *   struct with all other members zero, unless the function says otherwise.
 * - Any number of threads may use a handle or a segmenter at once. Anything that is passed by a
 *   non-const pointer, such as a cursor or a list, belongs to one thread at a time. So does a
 *   handle that is being closed.
 */

#ifndef DICTIONARY_DICTIONARY_H
#define DICTIONARY_DICTIONARY_H

#ifdef __cplusplus
#include <cstddef>
#include <cstdint>
#else
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#endif

#include "DictionaryExport.h"
#include "DictionaryVersion.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Some bytes, without a NUL at the end. Each function says who owns them. */
typedef struct DictionaryText {
    const char* bytes; /**< may be null when `size` is 0 */
    size_t size;       /**< in bytes */
} DictionaryText;

/* ---- Errors ---- */

/** What can be wrong. Numbers and names never change; later versions may add others. */
enum DictionaryCode {
    DICTIONARY_OK = 0,

    /* Any call. */
    DICTIONARY_BAD_ARGUMENT = 1,  /**< bad-argument: null, an unknown mode, a wrong `size` */
    DICTIONARY_NO_MEMORY = 2,     /**< no-memory */
    DICTIONARY_STOPPED = 3,       /**< stopped: by the caller's callback */
    DICTIONARY_CANNOT_READ = 4,   /**< cannot-read: a file; systemError says why */
    DICTIONARY_CANNOT_WRITE = 5,  /**< cannot-write: a file; systemError says why */
    DICTIONARY_TEXT_TOO_LONG = 6, /**< text-too-long: over 2,147,483,647 bytes */

    /* Images of unknown origin. */
    DICTIONARY_IMAGE_TOO_SHORT = 20, /**< image-too-short: shorter than a header */
    DICTIONARY_IMAGE_TOO_LARGE = 21, /**< image-too-large: over 2,147,483,647 bytes, or would be */
    DICTIONARY_IMAGE_HEADER = 22,    /**< header: it is not that of an image of this size */
    DICTIONARY_IMAGE_AREA = 23,      /**< area: a feature record runs over the end of the area */
    DICTIONARY_IMAGE_FREE_CELL = 24, /**< free-cell: a free cell has a base or a feature */
    DICTIONARY_IMAGE_PARENT = 25,    /**< parent: it is impossible, or parents form a cycle */
    DICTIONARY_IMAGE_LABEL = 26,     /**< label: a cell is out of reach of its parent's base, or is
                                        half of a surrogate pair without the other */
    DICTIONARY_IMAGE_BASE = 27,      /**< base: a cell in use has an impossible base */
    DICTIONARY_IMAGE_FEATURE = 28,   /**< feature: it begins no record, or its cell ends no key */

    /* Sources. */
    DICTIONARY_BAD_SEPARATOR = 40,   /**< bad-separator: empty, or has a NUL; or a tab in an item */
    DICTIONARY_NO_FIELD = 41,        /**< no-field: a record without a field separator */
    DICTIONARY_EMPTY_RECORD = 42,    /**< empty-record: an empty line */
    DICTIONARY_NUL = 43,             /**< nul: a NUL byte */
    DICTIONARY_RECORD_TOO_LONG = 44, /**< record-too-long: over 4,194,298 bytes */
    DICTIONARY_UNFINISHED = 45,      /**< unfinished: no record separator after the last record */
    DICTIONARY_EMPTY_KEY = 46,       /**< empty-key: a record that begins with a separator */
    DICTIONARY_BAD_UTF8 = 47,        /**< bad-utf8: in a key */
    DICTIONARY_CR = 48,              /**< cr: a carriage return at the end of a line */
    DICTIONARY_BOM = 49,             /**< bom: a byte-order mark at the start of the source */
    DICTIONARY_NO_RECORDS = 50,      /**< no-records: the source is empty */
    DICTIONARY_NOT_TEXT = 51,        /**< not-text: compressed, UTF-16, an image */
    DICTIONARY_SAME_FILE = 52,       /**< same-file: the image would replace the source */
    DICTIONARY_FIELD_MARK = 53,      /**< field-mark: a field after the first data field begins with
                                        ";", the mark of a record; only a check warns of it */

    /* Weights of segmenters. */
    DICTIONARY_NO_WEIGHT = 60, /**< no-weight: a key without the field */
    DICTIONARY_BAD_WEIGHT = 61 /**< bad-weight: not a number, or a count below 1 */
};

/** What an error means. */
enum DictionarySeverity {
    DICTIONARY_ERROR = 0,  /**< what was asked for was not done */
    DICTIONARY_WARNING = 1 /**< it was done anyway */
};

/** Which file an error concerns. */
enum DictionaryFile {
    DICTIONARY_FILE_NONE = 0,
    DICTIONARY_FILE_SOURCE = 1,
    DICTIONARY_FILE_IMAGE = 2
};

enum { DICTIONARY_ERROR_TEXT_BYTES = 256 };

/** What is wrong, and where. It owns no memory and can be copied. */
typedef struct DictionaryError {
    int code;         /**< one of DictionaryCode */
    int severity;     /**< one of DictionarySeverity */
    int systemError;  /**< errno if the system refused, else 0 */
    int file;         /**< one of DictionaryFile */
    const char* path; /**< of that file, the caller's own pointer; null for bytes in memory */
    uint64_t line;    /**< line of the source, or number of the item; 0 if no record is meant */
    uint64_t column;  /**< byte in the record; 0 if no byte is meant */
    int64_t cell;     /**< cell of the image, or -1 */
    int64_t offset;   /**< byte of the image, or -1 */
    char text[DICTIONARY_ERROR_TEXT_BYTES]; /**< what is wrong and what to do about it, in words;
                                               NUL-terminated; bytes that are not printable ASCII
                                               or legal UTF-8 are escaped */
} DictionaryError;

/** The name of a code, such as "no-field"; "ok" for DICTIONARY_OK, "unknown" for any other number.
 * The string is static. */
DICTIONARY_EXPORT const char* dictionaryCodeName(int code);

/** Writes "PATH:LINE:COLUMN: NAME: TEXT" to `buffer`. Parts that the error does not have are left
 * out. The system's reason and the place in the image ("cell 7, byte 84") follow if the error has
 * them. What is not printable is escaped. The message is NUL-terminated and cut to fit into `size`
 * bytes, which may be 0. Returns the length of the whole message, without the NUL. */
DICTIONARY_EXPORT size_t dictionaryErrorMessage(const DictionaryError* error, char* buffer,
                                                size_t size);

/* ---- Opening ---- */

/** An open dictionary: one image, or a set of several. The classic `search` and `destroyBin` take
 * one, too; `search` finds nothing in a set. */
typedef struct DictionaryHandle DictionaryHandle;

/** Where the bytes of an open image are. */
enum DictionaryOpenMode {
    DICTIONARY_OPEN_MAP = 0, /**< the file's pages, shared with every process that maps it; the file
                                must not change while it is open */
    DICTIONARY_OPEN_COPY = 1,  /**< a private copy; the file or the bytes may change or go away */
    DICTIONARY_OPEN_SHARE = 2, /**< as MAP, but an unchanged file that this process already has open
                                  in this mode is not mapped or verified again */
    DICTIONARY_OPEN_BORROW = 3 /**< the caller's bytes, which must last unchanged until the close */
};

/** Verifies and opens the image file `path`, in the mode MAP, COPY or SHARE. Only regular files are
 * opened: systemError is EISDIR for a folder, EINVAL for a pipe or a device. */
DICTIONARY_EXPORT DictionaryHandle* dictionaryOpenFile(const char* path, int mode,
                                                       DictionaryError* error);

/** Verifies and opens the image in `bytes`, in the mode COPY or BORROW. */
DICTIONARY_EXPORT DictionaryHandle* dictionaryOpenBytes(DictionaryText bytes, int mode,
                                                        DictionaryError* error);

/** Makes a set of `count` open images, from 1 to 64, that is searched as one. The images must stay
 * open as long as the set. A set cannot be part of a set. If the same stretch of a text is a key of
 * several images, the last of them wins, unless DictionaryFindOptions.everyImage is set. */
DICTIONARY_EXPORT DictionaryHandle* dictionaryOpenSet(const DictionaryHandle* const* images,
                                                      size_t count, DictionaryError* error);

/** Closes a handle, which must not be in use. Null is ignored. */
DICTIONARY_EXPORT void dictionaryClose(DictionaryHandle* handle);

/** Checks that the file is an image and that no lookup of any text reads outside it. Takes one
 * pass, and one bit of memory per cell and per feature byte. If keys have characters above U+FFFF,
 * it takes two more passes over the cells and two more bits per cell. */
DICTIONARY_EXPORT int dictionaryVerifyImage(const char* path, DictionaryError* error);

/** The same for an image in memory. */
DICTIONARY_EXPORT int dictionaryVerifyBytes(DictionaryText bytes, DictionaryError* error);

/* ---- What an image holds ---- */

/** What a handle holds. For a set these are sums: a key of several images counts once for each. */
typedef struct DictionaryDescription {
    size_t size;           /**< sizeof(DictionaryDescription) */
    uint64_t imageBytes;   /**< size of the whole image */
    uint64_t cells;        /**< cells of the double array, including the header */
    uint64_t featureBytes; /**< bytes of the data texts with their lengths */
    uint64_t keys;         /**< distinct keys in each image */
    uint32_t images;       /**< 1 unless it is a set */
    bool folded;           /**< keys and texts are folded; for a set, in any of its images */
} DictionaryDescription;

/** Fills `description`, which must not be null. Counting the keys takes one pass over the cells,
 * once per image. */
DICTIONARY_EXPORT int dictionaryDescribe(const DictionaryHandle* handle,
                                         DictionaryDescription* description,
                                         DictionaryError* error);

/** The bytes of image number `image` of a handle, counted from 0; null and 0 if there is no such
 * image. They last as long as the handle. */
DICTIONARY_EXPORT DictionaryText dictionaryImageBytes(const DictionaryHandle* handle,
                                                      uint32_t image);

/** The words of a cell; see docs/format.md. */
typedef struct DictionaryCell {
    int32_t base;    /**< where the children are; negative where a key ends */
    int32_t check;   /**< index of the parent's cell; -1 for a first character */
    int32_t feature; /**< byte offset of the key's data text in the feature area; -1 for none */
} DictionaryCell;

/** Cell `index` of image number `image`; all members are -1 if there is no such cell. */
DICTIONARY_EXPORT DictionaryCell dictionaryCellAt(const DictionaryHandle* handle, uint32_t image,
                                                  uint64_t index);

/* ---- Data of keys ---- */

/** A field of a data text. */
typedef struct DictionaryField {
    DictionaryText text; /**< part of the data text, without tab and mark */
    bool beginsRecord;   /**< it is the first field of a record; a repeated key has several */
} DictionaryField;

/** Takes the next field off the front of `data`; returns false if none is left. Zero `field` before
 * the first call. A data text consists of a key's fields, each followed by a tab. The data of a
 * repeated key is joined with ";", so a field after the first that begins with ";" begins a record.
 */
DICTIONARY_EXPORT bool dictionaryNextField(DictionaryText* data, DictionaryField* field);

/** Data text number `dataNumber` of image number `image`; null and 0 if there is none. */
DICTIONARY_EXPORT DictionaryText dictionaryDataAt(const DictionaryHandle* handle, uint32_t image,
                                                  uint32_t dataNumber);

/* ---- Whole keys ---- */

/** Whether `key` as a whole is a key. If so, `data` is set to its data text, whose `bytes` is not
 * null even if the text is empty; if not, to null and 0. The text lasts as long as the handle.
 * `data` may be null. */
DICTIONARY_EXPORT bool dictionaryLookupKey(const DictionaryHandle* handle, DictionaryText key,
                                           DictionaryText* data);

/** The same for `count` keys, in less time than one call for each. data[i] is set to the data text
 * of keys[i]; `data` may be null. Returns how many are keys. */
DICTIONARY_EXPORT size_t dictionaryLookupKeys(const DictionaryHandle* handle,
                                              const DictionaryText* keys, size_t count,
                                              DictionaryText* data);

/* ---- Lists of keys ---- */

/** A key with its data. */
typedef struct DictionaryKey {
    DictionaryText text; /**< lasts until the cursor moves */
    DictionaryText data; /**< lasts as long as the handle */
    uint32_t image;      /**< number of the image in a set, else 0 */
} DictionaryKey;

/** Goes through the keys that begin with a prefix, in the order of their code points, which is also
 * the order of their bytes. */
typedef struct DictionaryCursor DictionaryCursor;

/** Opens a cursor before the first of all keys. The first cursor of an image, on any thread, makes
 * an index of its keys. The index takes about 7 to 10 bytes per cell and stays as long as the image
 * is open; docs/design.md says how long it takes to make. In a set, a key of several images comes
 * once, from the last of them. */
DICTIONARY_EXPORT DictionaryCursor* dictionaryOpenCursor(const DictionaryHandle* handle,
                                                         DictionaryError* error);

/** Moves the cursor before the first key that begins with `prefix`. The cursor then ends after the
 * last such key. No key begins with illegal UTF-8. */
DICTIONARY_EXPORT void dictionarySeekPrefix(DictionaryCursor* cursor, DictionaryText prefix);

/** Sets `key` to the next key. At the end, empties `key` and returns false. */
DICTIONARY_EXPORT bool dictionaryNextKey(DictionaryCursor* cursor, DictionaryKey* key);

/** Fills `keys` with the next keys, at most `count`, and returns how many. It may return fewer than
 * `count` before the end, but 0 only at the end. The texts are next to each other in memory, each
 * followed by a NUL; no key has a NUL. */
DICTIONARY_EXPORT size_t dictionaryNextKeys(DictionaryCursor* cursor, DictionaryKey* keys,
                                            size_t count);

/** Closes a cursor. Call this before the handle is closed. Null is ignored. */
DICTIONARY_EXPORT void dictionaryCloseCursor(DictionaryCursor* cursor);

/* ---- Keys in texts ----
 *
 * A byte of a text that begins no legal UTF-8 sequence counts as a character that is in no key. So
 * does a NUL. */

/** Which of the keys in a text are found. */
enum DictionaryFindMode {
    DICTIONARY_FIND_ALL = 0,      /**< every key at every position, shortest first */
    DICTIONARY_FIND_LONGEST = 1,  /**< the longest key at every position */
    DICTIONARY_FIND_SEGMENT = 2,  /**< the longest key at the first position that has one, then the
                                     same from its end on, and so on */
    DICTIONARY_FIND_WEIGHTED = 3, /**< the cheapest segmentation by the weights of a segmenter */
    DICTIONARY_FIND_PREFIXES = 4, /**< every key that the text begins with, shortest first */
    DICTIONARY_FIND_CLASSIC = 5 /**< what `search` finds: it stops at a NUL and at the first illegal
                                   byte, and misses keys right before a character above U+FFFF */
};

/** What `start` and `length` of a match count. A byte that begins no legal sequence counts as one
 * in every unit. */
enum DictionaryUnit {
    DICTIONARY_UNIT_BYTE = 0,       /**< of UTF-8 */
    DICTIONARY_UNIT_CODE_POINT = 1, /**< one for every character */
    DICTIONARY_UNIT_UTF16 = 2       /**< 16-bit units of UTF-16: two for a character above U+FFFF */
};

typedef struct DictionarySegmenter DictionarySegmenter; /**< weights of keys */

/** How a text is searched. */
typedef struct DictionaryFindOptions {
    size_t size;                          /**< sizeof(DictionaryFindOptions) */
    int mode;                             /**< one of DictionaryFindMode */
    int unit;                             /**< one of DictionaryUnit */
    const DictionarySegmenter* segmenter; /**< WEIGHTED needs one for the same handle; else null */
    bool wholeWords; /**< no match begins or ends inside a word (docs/words.md); not for CLASSIC */
    bool everyImage; /**< in a set, a stretch that is a key of several images is found once for
                        each, in their order; only for ALL, LONGEST and PREFIXES */
    bool unknownPieces; /**< also find the pieces that are not keys, without data, so that the
                           matches cover the whole text; only for SEGMENT and WEIGHTED */
    bool joinedRuns;    /**< a run of ASCII letters and digits that no key covers is one piece, not
                           one for each character; only for SEGMENT and WEIGHTED */
} DictionaryFindOptions;

/** A key found in a text. */
typedef struct DictionaryMatch {
    size_t start;        /**< of the key in the text, in the unit */
    size_t length;       /**< of the key, in the unit */
    DictionaryText data; /**< the key's data text; lasts as long as the handle; `bytes` is null only
                            for a piece that is not a key */
    uint32_t dataNumber; /**< number of the data text in its image; equal texts have the same one */
    uint32_t image;      /**< number of the image in a set, else 0 */
} DictionaryMatch;

/** A list that grows as needed and can be reused for the next text. Zero it before the first use
 * and free it after the last. */
typedef struct DictionaryMatches {
    DictionaryMatch* items; /**< owned by the list; valid until it is filled again or freed */
    size_t count;           /**< how many items there are */
    size_t capacity;        /**< the room for items */
} DictionaryMatches;

/** Replaces what `matches` holds by the matches of `text`, in the order of their starts. After an
 * error the list is empty. */
DICTIONARY_EXPORT int dictionaryFindMatches(const DictionaryHandle* handle,
                                            const DictionaryFindOptions* options,
                                            DictionaryText text, DictionaryMatches* matches,
                                            DictionaryError* error);

/** The same for `count` texts in one call. The matches of text i end before item ends[i]. After an
 * error all `ends` are 0, and `line` of the error is the number of the text at fault, from 1. */
DICTIONARY_EXPORT int dictionaryFindInTexts(const DictionaryHandle* handle,
                                            const DictionaryFindOptions* options,
                                            const DictionaryText* texts, size_t count,
                                            DictionaryMatches* matches, size_t* ends,
                                            DictionaryError* error);

DICTIONARY_EXPORT void dictionaryFreeMatches(DictionaryMatches* matches); /**< may be null */

/** Calls `visit` for each match of `text`, in the order of their starts. If it returns false, the
 * search stops and DICTIONARY_STOPPED is returned. No more of the text is searched than necessary.
 * The match lasts until `visit` returns. */
DICTIONARY_EXPORT int dictionaryVisitMatches(
    const DictionaryHandle* handle, const DictionaryFindOptions* options, DictionaryText text,
    bool (*visit)(void* context, const DictionaryMatch* match), void* context,
    DictionaryError* error);

/** Sets `contains` to whether any key is in `text`. Stops at the first one. Of the options, only
 * wholeWords has an effect. */
DICTIONARY_EXPORT int dictionaryContainsKey(const DictionaryHandle* handle,
                                            const DictionaryFindOptions* options,
                                            DictionaryText text, bool* contains,
                                            DictionaryError* error);

/** The matches of many texts as arrays of equal length, one entry per match, for hosts where a
 * struct per match costs too much. Zero it before the first use and free it after the last. */
typedef struct DictionaryColumns {
    uint32_t* text;       /**< number of the text, from 0 */
    uint32_t* start;      /**< in the unit */
    uint32_t* end;        /**< in the unit, exclusive */
    uint32_t* dataNumber; /**< for dictionaryDataAt; UINT32_MAX for a piece that is not a key */
    uint32_t* image;      /**< number of the image in a set, else 0 */
    size_t count;         /**< how many entries each column has */
    size_t capacity;      /**< the room for entries */
} DictionaryColumns;

/** As dictionaryFindInTexts, but fills columns, which are empty after an error. */
DICTIONARY_EXPORT int dictionaryFindColumns(const DictionaryHandle* handle,
                                            const DictionaryFindOptions* options,
                                            const DictionaryText* texts, size_t count,
                                            DictionaryColumns* columns, DictionaryError* error);

DICTIONARY_EXPORT void dictionaryFreeColumns(DictionaryColumns* columns); /**< may be null */

/** Whether the first character of `text` belongs to words of scripts that are written with blanks:
 * a letter, a mark or a digit; see docs/words.md. */
DICTIONARY_EXPORT bool dictionaryIsWordCharacter(DictionaryText text);

/* ---- Segmentation by weight ---- */

/** How the weights of keys are read from a data field. */
enum DictionaryWeights {
    DICTIONARY_WEIGHTS_COUNTS = 0, /**< a key costs log(total) - log(count), where total is the sum
                                      of all keys' counts; an unknown character has the count 1 */
    DICTIONARY_WEIGHTS_COSTS = 1   /**< a key costs the number in the field; an unknown character
                                      costs unknownCost */
};

/** Where the weights of a segmenter come from. */
typedef struct DictionarySegmenterOptions {
    size_t size;        /**< sizeof(DictionarySegmenterOptions) */
    int weights;        /**< one of DictionaryWeights */
    unsigned field;     /**< number of the data field in a key's first record, from 1; 0 means 1 */
    double unknownCost; /**< what an unknown character costs; used only with WEIGHTS_COSTS */
} DictionarySegmenterOptions;

/** Makes a segmenter for DICTIONARY_FIND_WEIGHTED. A segmenter cuts a text into keys and unknown
 * characters so that the total cost is least. Unknown characters are those where no key begins. If
 * several cuts cost the same, it takes the one whose first word is longer, and so on for the next
 * words. Costs are summed from the end of the text, in double precision.
 *
 * Every key must have the field, with a number in it. If a key does not, the error names the key
 * and, for a set, the number of its image. In a set, a key of several images counts once, with the
 * weight in the last of them. A segmenter takes at most 8 bytes per distinct data text and two bits
 * per 4 bytes of those texts, less if weights repeat. Segmenting a text takes one byte per byte of
 * it and several hundred kilobytes. The handle must stay open. Null options mean counts in the
 * first field. */
DICTIONARY_EXPORT DictionarySegmenter* dictionaryMakeSegmenter(
    const DictionaryHandle* handle, const DictionarySegmenterOptions* options,
    DictionaryError* error);

DICTIONARY_EXPORT void dictionaryFreeSegmenter(DictionarySegmenter* segmenter); /**< may be null */

/* ---- Replacement ---- */

/** What takes the place of a key. */
typedef struct DictionaryReplaceOptions {
    size_t size;              /**< sizeof(DictionaryReplaceOptions) */
    unsigned field;           /**< the data field that replaces a key, counted from 1; 0 means 1 */
    const char* alternatives; /**< what separates alternatives in the field; the first one is taken;
                                 null if the field is one text */
    bool removeEmpty;         /**< if true, an empty or missing field removes the key; if false, the
                                 key stays */
    bool wantEdits;           /**< also list the edits */
} DictionaryReplaceOptions;

/** A stretch of the text that was replaced, and the stretch of the result that replaced it. */
typedef struct DictionaryEdit {
    size_t start;       /**< in the text, in the unit */
    size_t end;         /**< in the text, in the unit, exclusive */
    size_t resultStart; /**< in the result, in the unit */
    size_t resultEnd;   /**< in the result, in the unit, exclusive */
} DictionaryEdit;

/** A result that grows as needed and can be reused. Zero it before the first use and free it after
 * the last. */
typedef struct DictionaryReplacement {
    char* bytes;           /**< the text after the replacement; not NUL-terminated */
    size_t size;           /**< size of that text, in bytes */
    size_t capacity;       /**< the room for that text, in bytes */
    DictionaryEdit* edits; /**< in the order of their starts; none unless wantEdits is set */
    size_t editCount;      /**< how many edits there are */
    size_t editCapacity;   /**< the room for edits */
} DictionaryReplacement;

/** Segments a text and replaces every key in it by a data field. Everything else is copied byte for
 * byte. The mode is SEGMENT or WEIGHTED; null `findOptions` mean SEGMENT. After an error the result
 * is empty. */
DICTIONARY_EXPORT int dictionaryReplaceKeys(const DictionaryHandle* handle,
                                            const DictionaryFindOptions* findOptions,
                                            const DictionaryReplaceOptions* options,
                                            DictionaryText text, DictionaryReplacement* result,
                                            DictionaryError* error);

DICTIONARY_EXPORT void dictionaryFreeReplacement(DictionaryReplacement* result); /**< may be null */

/* ---- Building ---- */

/** Where a dictionary comes from. Exactly one of `path`, `bytes.bytes` and `nextItem` is not null.
 */
typedef struct DictionarySource {
    size_t size;          /**< sizeof(DictionarySource) */
    const char* path;     /**< a source file, which may be a pipe */
    DictionaryText bytes; /**< a source in memory */
    /** Items in memory. Sets `fields` to the key and the data fields of the next item, and `count`
     * to their number; returns false after the last item. The fields must last until the next call.
     * In errors, `line` is the number of the item, and `column` counts the bytes of its fields with
     * one byte between two fields. Separators are data like anything else, but a tab or a NUL in an
     * item is an error. If this function throws, the build stops with DICTIONARY_STOPPED. */
    bool (*nextItem)(void* context, const DictionaryText** fields, size_t* count);
    void* context; /**< for nextItem */
} DictionarySource;

/** An image in memory, from malloc. */
typedef struct DictionaryImageBuffer {
    char* bytes; /**< the whole image; the caller frees it */
    size_t size; /**< in bytes */
} DictionaryImageBuffer;

/** Where the image goes. At most one of `path` and `buffer` is not null. With neither, the source
 * is only checked, which takes little memory. */
typedef struct DictionaryTarget {
    size_t size;                   /**< sizeof(DictionaryTarget) */
    const char* path;              /**< an image file */
    DictionaryImageBuffer* buffer; /**< overwritten without being freed; empty after an error */
} DictionaryTarget;

DICTIONARY_EXPORT void dictionaryFreeBuffer(DictionaryImageBuffer* buffer); /**< may be null */

/** The stages of a build, in their order. */
enum DictionaryBuildStage {
    DICTIONARY_STAGE_READ = 0,  /**< done and total count bytes of the source, or items */
    DICTIONARY_STAGE_PLACE = 1, /**< done and total count each key once per node that it passes */
    DICTIONARY_STAGE_WRITE = 2  /**< done and total count bytes of the image */
};

/** How a source is read, and the callbacks of a build. */
typedef struct DictionaryBuildOptions {
    size_t size;                 /**< sizeof(DictionaryBuildOptions) */
    const char* fieldSeparator;  /**< in the notation of getEscapeSeparator; null for a tab */
    const char* recordSeparator; /**< in the same notation; null for a newline */
    /** How many problems to report at most; 0 means 100. The first error is always reported. */
    unsigned problemLimit;
    bool lenient;     /**< an empty key, illegal UTF-8, a carriage return at the end of a line and a
                         byte-order mark are only warnings, and treated as buildTree treats them */
    bool fromWindows; /**< a carriage return at the end of a line and a byte-order mark at the start
                         of the source are not part of any field */
    bool allowEmpty;  /**< a source without records makes an empty image */
    bool folded; /**< letters are folded (see docs/words.md), in the keys and in whatever is looked
                    up */
    /** Called for each problem, in the order of the source. May be null. */
    void (*onProblem)(void* context, const DictionaryError* problem);
    /** Called now and then, and at the end of each stage, when `done` equals `total`. Before that,
     * a `total` of 0 means that it is not known yet, as with a pipe. Return false to stop the
     * build. May be null. */
    bool (*onProgress)(void* context, int stage, uint64_t done, uint64_t total);
    void* context; /**< for both callbacks, which run on the caller's thread; if one throws, the
                      build stops with DICTIONARY_STOPPED */
} DictionaryBuildOptions;

/** What a build counted. */
typedef struct DictionaryBuildReport {
    size_t size;         /**< sizeof(DictionaryBuildReport) */
    uint64_t records;    /**< records read, including those with problems */
    uint64_t keys;       /**< distinct keys in the image; 0 if none was made */
    uint64_t problems;   /**< problems found, including those beyond the limit */
    uint64_t imageBytes; /**< size of the image; 0 if none was made */
} DictionaryBuildReport;

/** Builds the image file `image` from the source file `source`, which may be a pipe. See
 * dictionaryBuildFrom. */
DICTIONARY_EXPORT int dictionaryBuildFile(const char* source, const char* image,
                                          const DictionaryBuildOptions* options,
                                          DictionaryBuildReport* report, DictionaryError* error);

/** Builds an image. It has the same bytes that buildTree makes of the same records. In addition,
 * keys may have characters above U+FFFF. Such a character is two labels, its UTF-16 surrogates;
 * buildTree does not accept it, and classic lookups pass over it.
 *
 * An image file is written under another name in the same folder, synced and renamed. So at every
 * moment there is either the old file or the complete new one under its name. Only a process that
 * is killed leaves the unfinished file, named `.NAME.` and random letters and digits. If the path
 * is a symbolic link, the link stays and the file that it leads to is replaced. Whoever could use
 * the old image can use the new one, as far as the system allows. A folder, a device and a file
 * that may not be written are refused before the source is read.
 *
 * The problems of the source are reported in its order, up to the limit. After the first error, the
 * rest of the source is only checked. Returns DICTIONARY_OK, or the code of the first error, which
 * `error` has, too; DICTIONARY_STOPPED if a callback stopped the build. `report` may be null. */
DICTIONARY_EXPORT int dictionaryBuildFrom(const DictionarySource* source,
                                          const DictionaryTarget* target,
                                          const DictionaryBuildOptions* options,
                                          DictionaryBuildReport* report, DictionaryError* error);

/* ---- Version ---- */

/** The version of the library that runs, such as "1.0.0"; a static string. DictionaryVersion.h has
 * the version of the headers. */
DICTIONARY_EXPORT const char* dictionaryVersion(void);

#ifdef __cplusplus
}
#endif

#endif
