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
 * - A function that can fail returns a DictionaryCode, or a pointer that is null, and fills an
 *   error record. The record may be null. It is filled on success, too, with DICTIONARY_OK.
 * - Texts and keys are UTF-8, given with their size; they need no NUL and may have any. Paths are
 *   NUL-terminated. Sizes and offsets are in bytes unless a unit is named; lines, columns, items
 *   and fields are counted from 1.
 * - A struct that begins with `size` is to be zeroed and given its own sizeof there, so that later
 *   versions can add members. Any other size is DICTIONARY_BAD_ARGUMENT. Where such a struct is an
 *   argument, null means one with all else zero.
 * - Handles, segmenters and key numbers may be used by any number of threads at once. Making one,
 *   and everything that is not const, belongs to one thread at a time.
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

/** Some bytes. The function says to whom they belong. They have no NUL at the end. */
typedef struct DictionaryText {
    const char* bytes; /**< may be null when `size` is 0 */
    size_t size;       /**< in bytes */
} DictionaryText;

/* ---- Errors ---- */

/** What can be wrong. The numbers and the names stay as they are; later versions add others. */
enum DictionaryCode {
    DICTIONARY_OK = 0,

    /* Any call. */
    DICTIONARY_BAD_ARGUMENT = 1,  /**< bad-argument: null, an unknown mode, a wrong `size` */
    DICTIONARY_NO_MEMORY = 2,     /**< no-memory */
    DICTIONARY_STOPPED = 3,       /**< stopped: by a callback of the caller's */
    DICTIONARY_CANNOT_READ = 4,   /**< cannot-read: a file; systemError says why */
    DICTIONARY_CANNOT_WRITE = 5,  /**< cannot-write: a file; systemError says why */
    DICTIONARY_TEXT_TOO_LONG = 6, /**< text-too-long: over 2,147,483,647 bytes */

    /* Images of unknown origin. */
    DICTIONARY_IMAGE_TOO_SHORT = 20, /**< image-too-short: shorter than a header */
    DICTIONARY_IMAGE_TOO_LARGE = 21, /**< image-too-large: than an image can be, or would become */
    DICTIONARY_IMAGE_HEADER = 22,    /**< header: its sizes do not add up to the image's */
    DICTIONARY_IMAGE_AREA = 23,      /**< area: a feature record runs over the end of the area */
    DICTIONARY_IMAGE_FREE_CELL = 24, /**< free-cell: a free cell is not as written */
    DICTIONARY_IMAGE_PARENT = 25,    /**< parent: one that cannot be, or leads back to the cell */
    DICTIONARY_IMAGE_LABEL = 26,     /**< label: a cell's distance from its parent's base is none */
    DICTIONARY_IMAGE_BASE = 27,      /**< base: a cell in use has none that can be */
    DICTIONARY_IMAGE_FEATURE = 28,   /**< feature: a cell refers to no record of the area */

    /* Sources. */
    DICTIONARY_BAD_SEPARATOR = 40,   /**< bad-separator: empty, or with a NUL; a tab in an item */
    DICTIONARY_NO_FIELD = 41,        /**< no-field: a record without a field separator */
    DICTIONARY_EMPTY_RECORD = 42,    /**< empty-record: an empty line */
    DICTIONARY_NUL = 43,             /**< nul: a NUL byte */
    DICTIONARY_RECORD_TOO_LONG = 44, /**< record-too-long */
    DICTIONARY_UNFINISHED = 45,      /**< unfinished: no record separator after the last record */
    DICTIONARY_EMPTY_KEY = 46,       /**< empty-key: a record that begins with a separator */
    DICTIONARY_BAD_UTF8 = 47,        /**< bad-utf8: in a key */
    DICTIONARY_CR = 48,              /**< cr: a carriage return at the end of a line */
    DICTIONARY_BOM = 49,             /**< bom: a byte-order mark at the start of the source */
    DICTIONARY_NO_RECORDS = 50,      /**< no-records: nothing in the source */
    DICTIONARY_NOT_TEXT = 51,        /**< not-text: compressed, UTF-16, an image */
    DICTIONARY_SAME_FILE = 52,       /**< same-file: the image would replace the source */
    DICTIONARY_FIELD_MARK = 53,      /**< field-mark: a field after the first data field begins with
                                        ";", the mark of a record; a warning of checks alone */

    /* Weights of segmenters. */
    DICTIONARY_NO_WEIGHT = 60, /**< no-weight: a key without the field */
    DICTIONARY_BAD_WEIGHT = 61 /**< bad-weight: no number, or a count below 1 */
};

/** What an error means. */
enum DictionarySeverity {
    DICTIONARY_ERROR = 0,  /**< what was asked for was not done */
    DICTIONARY_WARNING = 1 /**< it was done nevertheless */
};

/** Which file an error concerns. */
enum DictionaryFile {
    DICTIONARY_FILE_NONE = 0,
    DICTIONARY_FILE_SOURCE = 1,
    DICTIONARY_FILE_IMAGE = 2
};

enum { DICTIONARY_ERROR_TEXT_BYTES = 256 };

/** What is wrong, and where. It holds no memory and can be copied. */
typedef struct DictionaryError {
    int code;         /**< one of DictionaryCode */
    int severity;     /**< one of DictionarySeverity */
    int systemError;  /**< errno where the system refused, else 0 */
    int file;         /**< one of DictionaryFile */
    const char* path; /**< of that file, the caller's own pointer; null for bytes in memory */
    uint64_t line;    /**< of the source, or number of the item; 0 where no record is meant */
    uint64_t column;  /**< byte in the record; 0 where no byte is meant */
    int64_t cell;     /**< of the image, or -1 */
    int64_t offset;   /**< byte of the image, or -1 */
    char text[DICTIONARY_ERROR_TEXT_BYTES]; /**< what is wrong and what to do about it, in words;
                                               NUL-terminated; bytes that are not printable ASCII
                                               or legal UTF-8 are escaped */
} DictionaryError;

/** The name of a code: "no-field"; "ok" for DICTIONARY_OK, "unknown" for a number that is none.
 * Lasts permanently. */
DICTIONARY_EXPORT const char* dictionaryCodeName(int code);

/** Writes "PATH:LINE:COLUMN: NAME: TEXT" to `buffer`, without the parts that the error does not
 * have, with those that it has instead ("cell 7, byte 84", the system's reason); what is not
 * printable is escaped. NUL-terminated, cut at `size`, which may be 0. Returns the length of the
 * whole message. */
DICTIONARY_EXPORT size_t dictionaryErrorMessage(const DictionaryError* error, char* buffer,
                                                size_t size);

/* ---- Opening ---- */

/** An open dictionary: one image, or a set of several. `search` and `destroyBin` take one, too
 * (a set finds nothing there). */
typedef struct DictionaryHandle DictionaryHandle;

/** What an open image rests on. */
enum DictionaryOpenMode {
    DICTIONARY_OPEN_MAP = 0, /**< the file's pages, shared with every process that maps it; the file
                                must not change while it is open */
    DICTIONARY_OPEN_COPY = 1,  /**< a private copy, whatever becomes of the file or the bytes */
    DICTIONARY_OPEN_SHARE = 2, /**< as MAP; an unchanged file that this process has already open in
                                  this mode is neither mapped nor verified again */
    DICTIONARY_OPEN_BORROW = 3 /**< the caller's bytes, which must last unchanged until the close */
};

/** Verifies and opens the image file `path`, in the mode MAP, COPY or SHARE. Only regular files are
 * opened: systemError is EISDIR for a folder, EINVAL for a pipe or a device. */
DICTIONARY_EXPORT DictionaryHandle* dictionaryOpenFile(const char* path, int mode,
                                                       DictionaryError* error);

/** Verifies and opens the image in `bytes`, in the mode COPY or BORROW. */
DICTIONARY_EXPORT DictionaryHandle* dictionaryOpenBytes(DictionaryText bytes, int mode,
                                                        DictionaryError* error);

/** A set of `count` open images, from 1 to 64, that is searched as one. They must stay open as long
 * as the set; a set cannot be part of a set. Where the same stretch of a text is a key of several,
 * the later image wins, unless DictionaryFindOptions.everyImage says otherwise. */
DICTIONARY_EXPORT DictionaryHandle* dictionaryOpenSet(const DictionaryHandle* const* images,
                                                      size_t count, DictionaryError* error);

/** Closes a handle. It must not be in use. Null is ignored. */
DICTIONARY_EXPORT void dictionaryClose(DictionaryHandle* handle);

/** Whether the file is an image over which every lookup of every text stays inside. Takes one pass,
 * and memory for one bit per cell and per feature byte. */
DICTIONARY_EXPORT int dictionaryVerifyImage(const char* path, DictionaryError* error);

/** The same for an image in memory. */
DICTIONARY_EXPORT int dictionaryVerifyBytes(DictionaryText bytes, DictionaryError* error);

/* ---- What an image holds ---- */

/** Of a set, the sums: a key of several images counts once for each. */
typedef struct DictionaryDescription {
    size_t size;           /**< sizeof(DictionaryDescription) */
    uint64_t imageBytes;   /**< of the whole image */
    uint64_t cells;        /**< of the double array, the header among them */
    uint64_t featureBytes; /**< of the data texts with their lengths */
    uint64_t keys;         /**< distinct ones in each image */
    uint32_t images;       /**< 1 unless it is a set */
    bool folded;           /**< keys and texts are folded; of a set, in any image */
} DictionaryDescription;

/** Describes a handle. Counting the keys takes one pass over the cells, once per handle. */
DICTIONARY_EXPORT int dictionaryDescribe(const DictionaryHandle* handle,
                                         DictionaryDescription* description,
                                         DictionaryError* error);

/** The bytes of image number `image` of a handle, counted from 0; null and 0 when there is none.
 * They last as long as the handle. */
DICTIONARY_EXPORT DictionaryText dictionaryImageBytes(const DictionaryHandle* handle,
                                                      uint32_t image);

/** The words of a cell; see docs/format.md. */
typedef struct DictionaryCell {
    int32_t base;    /**< where the children are; negative where a key ends */
    int32_t check;   /**< index of the parent's cell; -1 for a first character */
    int32_t feature; /**< where the key's data text is in the feature area, in bytes; -1 for none */
} DictionaryCell;

/** Cell `index` of image number `image`; all -1 when there is none. */
DICTIONARY_EXPORT DictionaryCell dictionaryCellAt(const DictionaryHandle* handle, uint32_t image,
                                                  uint64_t index);

/* ---- Data of keys ---- */

/** A field of a data text. */
typedef struct DictionaryField {
    DictionaryText text; /**< in the data text, without tab and mark */
    bool beginsRecord;   /**< the first field of a record: a repeated key has several */
} DictionaryField;

/** Takes the next field off `data`; false when none is left. Zero `field` before the first one. A
 * key's data text is its fields, each followed by a tab; the data of a repeated key is joined with
 * ";", so a field after the first that begins with ";" begins a record. */
DICTIONARY_EXPORT bool dictionaryNextField(DictionaryText* data, DictionaryField* field);

/** The data text with that number in image number `image`; null and 0 for a number that is none. */
DICTIONARY_EXPORT DictionaryText dictionaryDataAt(const DictionaryHandle* handle, uint32_t image,
                                                  uint32_t dataNumber);

/* ---- Whole keys ---- */

/** Whether `key` as a whole is a key. `data`, which may be null, gets its data text, with `bytes`
 * not null even when it is empty; else null and 0. It lasts as long as the handle. */
DICTIONARY_EXPORT bool dictionaryLookupKey(const DictionaryHandle* handle, DictionaryText key,
                                           DictionaryText* data);

/** The same for `count` keys, which takes less time than one call for each: data[i] gets the data
 * text of keys[i]; `data` may be null. Returns how many are keys. */
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

/** Goes through the keys that begin with a prefix, in the order of their code points, which is that
 * of their bytes. */
typedef struct DictionaryCursor DictionaryCursor;

/** A cursor before the first of all keys. The first cursor of an image makes an index of its keys,
 * whichever thread opens it; docs/design.md has its time and its memory, about 7 to 10 bytes per
 * cell, which it keeps as long as the image is open. In a set, a key of several images comes once,
 * from the last. */
DICTIONARY_EXPORT DictionaryCursor* dictionaryOpenCursor(const DictionaryHandle* handle,
                                                         DictionaryError* error);

/** Moves before the first key that begins with `prefix`; the cursor then ends after the last one.
 * No key begins with illegal UTF-8. */
DICTIONARY_EXPORT void dictionarySeekPrefix(DictionaryCursor* cursor, DictionaryText prefix);

/** The next key; false at the end, with `key` empty. */
DICTIONARY_EXPORT bool dictionaryNextKey(DictionaryCursor* cursor, DictionaryKey* key);

/** The next keys, at most `count` of them: fills `keys` from its beginning and returns how many it
 * has filled, which may be fewer before the end, too, but 0 only there. In memory their texts
 * follow each other, each with a NUL after it; no key has a NUL. */
DICTIONARY_EXPORT size_t dictionaryNextKeys(DictionaryCursor* cursor, DictionaryKey* keys,
                                            size_t count);

/** Must come before the handle is closed. Null is ignored. */
DICTIONARY_EXPORT void dictionaryCloseCursor(DictionaryCursor* cursor);

/* ---- Keys in texts ----
 *
 * A byte of a text that begins no legal UTF-8 sequence is passed over as a character of its own
 * that no key holds; so is a NUL. */

/** Which of the keys in a text are found. */
enum DictionaryFindMode {
    DICTIONARY_FIND_ALL = 0,      /**< every key at every position, shortest first */
    DICTIONARY_FIND_LONGEST = 1,  /**< the longest key at every position */
    DICTIONARY_FIND_SEGMENT = 2,  /**< the longest key at the first position that has one, the same
                                     after its end, and so on */
    DICTIONARY_FIND_WEIGHTED = 3, /**< the cheapest segmentation by the weights of a segmenter */
    DICTIONARY_FIND_PREFIXES = 4, /**< every key that the text begins with, shortest first */
    DICTIONARY_FIND_CLASSIC = 5 /**< what `search` finds: it stops at a NUL and at the first illegal
                                   byte, and misses keys before a character above U+FFFF */
};

/** What `start` and `length` of a match count. A byte that begins no legal sequence counts as one
 * of each. */
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
    const DictionarySegmenter* segmenter; /**< of the same handle, for FIND_WEIGHTED alone */
    bool wholeWords; /**< a match neither begins nor ends inside a word; see docs/words.md */
    bool everyImage; /**< of a set: a stretch that is a key of several images is found in each, in
                        their order; with ALL, LONGEST and PREFIXES alone */
    bool unknownPieces; /**< also the pieces that are no key, with no data, so that the matches are
                           the whole text; with SEGMENT and WEIGHTED alone */
    bool joinedRuns;    /**< ASCII letters and digits in a row that no key covers are one piece, and
                           not one piece each; with SEGMENT and WEIGHTED alone */
} DictionaryFindOptions;

/** A key found in a text. */
typedef struct DictionaryMatch {
    size_t start;        /**< of the key in the text, in the unit */
    size_t length;       /**< of the key, in the unit */
    DictionaryText data; /**< the key's data text; lasts as long as the handle; `bytes` is null for
                            a piece that is no key, and for no other */
    uint32_t dataNumber; /**< the data text's number in its image, the same for equal texts */
    uint32_t image;      /**< number of the image in a set, else 0 */
} DictionaryMatch;

/** A list that grows as needed and can be used again for the next text: zero it first, free it at
 * last. */
typedef struct DictionaryMatches {
    DictionaryMatch* items; /**< the list's own, until it is filled again or freed */
    size_t count;           /**< how many items there are */
    size_t capacity;        /**< the room for items */
} DictionaryMatches;

/** Fills `matches`, in place of what it held, with the matches of `text`, by start. After an error
 * it is empty. */
DICTIONARY_EXPORT int dictionaryFindMatches(const DictionaryHandle* handle,
                                            const DictionaryFindOptions* options,
                                            DictionaryText text, DictionaryMatches* matches,
                                            DictionaryError* error);

/** The same for `count` texts in one call: the matches of text i end before item ends[i]. After an
 * error all `ends` are 0, and `line` of the error is the number of the text at fault, from 1. */
DICTIONARY_EXPORT int dictionaryFindInTexts(const DictionaryHandle* handle,
                                            const DictionaryFindOptions* options,
                                            const DictionaryText* texts, size_t count,
                                            DictionaryMatches* matches, size_t* ends,
                                            DictionaryError* error);

DICTIONARY_EXPORT void dictionaryFreeMatches(DictionaryMatches* matches); /**< may be null */

/** Calls `visit` for the matches of `text`, by start, until it returns false, and returns
 * DICTIONARY_STOPPED then. Stopped early, no more of the text is searched than has to be. The match
 * lasts during the call. */
DICTIONARY_EXPORT int dictionaryVisitMatches(
    const DictionaryHandle* handle, const DictionaryFindOptions* options, DictionaryText text,
    bool (*visit)(void* context, const DictionaryMatch* match), void* context,
    DictionaryError* error);

/** Sets `contains` to whether any key is in `text`; stops at the first. Of the options, wholeWords
 * counts alone. */
DICTIONARY_EXPORT int dictionaryContainsKey(const DictionaryHandle* handle,
                                            const DictionaryFindOptions* options,
                                            DictionaryText text, bool* contains,
                                            DictionaryError* error);

/** The matches of many texts as arrays of equal length, one entry per match, for hosts for which a
 * record per match is too much. Zero it first, free it at last. */
typedef struct DictionaryColumns {
    uint32_t* text;       /**< number of the text, from 0 */
    uint32_t* start;      /**< in the unit */
    uint32_t* end;        /**< in the unit, exclusive */
    uint32_t* dataNumber; /**< of the data text, for dictionaryDataAt; UINT32_MAX of no key */
    uint32_t* image;      /**< number of the image in a set, else 0 */
    size_t count;         /**< of the entries in each column */
    size_t capacity;      /**< the room for entries */
} DictionaryColumns;

/** As dictionaryFindInTexts, but in columns, which are empty after an error. */
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
    DICTIONARY_WEIGHTS_COUNTS = 0, /**< a key costs log(total) - log(count), total over all keys; an
                                      unknown character has the count 1 */
    DICTIONARY_WEIGHTS_COSTS = 1   /**< a key costs the field; an unknown character unknownCost */
};

/** Where the weights of a segmenter come from. */
typedef struct DictionarySegmenterOptions {
    size_t size;        /**< sizeof(DictionarySegmenterOptions) */
    int weights;        /**< one of DictionaryWeights */
    unsigned field;     /**< number of the data field, from 1, of a key's first record; 0 for 1 */
    double unknownCost; /**< with WEIGHTS_COSTS alone */
} DictionarySegmenterOptions;

/** A segmenter for DICTIONARY_FIND_WEIGHTED: of all ways to cut a text into keys and unknown
 * characters, which are those where no key begins, it finds the one of the least total cost, of
 * several the one whose first word is longer, and so on. The sums are made from the end of the
 * text, in double precision.
 *
 * Every key must have the field, and a number in it; the error names a key that has not and, of a
 * set, the number of its image. In a set, a key of several images counts once, as the last of them
 * has it. A segmenter takes at most 8 bytes per distinct data text, and two bits per 4 to 8 bytes
 * of those, but less where weights repeat. A text takes one byte per byte while it is segmented,
 * and some hundred kilobytes. The handle must stay open. Null options read counts from the first
 * field. */
DICTIONARY_EXPORT DictionarySegmenter* dictionaryMakeSegmenter(
    const DictionaryHandle* handle, const DictionarySegmenterOptions* options,
    DictionaryError* error);

DICTIONARY_EXPORT void dictionaryFreeSegmenter(DictionarySegmenter* segmenter); /**< may be null */

/* ---- Replacement ---- */

/** What takes the place of a key. */
typedef struct DictionaryReplaceOptions {
    size_t size;              /**< sizeof(DictionaryReplaceOptions) */
    unsigned field;           /**< number of the data field that replaces a key, from 1; 0 for 1 */
    const char* alternatives; /**< what separates alternatives in the field, of which the first
                                 counts; null: the field is one text */
    bool removeEmpty;         /**< an empty or missing field removes the key, which else stays */
    bool wantEdits;           /**< DictionaryReplacement gets the edits, too */
} DictionaryReplaceOptions;

/** A stretch of the text that was replaced and what it became. */
typedef struct DictionaryEdit {
    size_t start;       /**< in the text, in the unit */
    size_t end;         /**< likewise, exclusive */
    size_t resultStart; /**< in the result, in the unit */
    size_t resultEnd;   /**< likewise, exclusive */
} DictionaryEdit;

/** A result that grows as needed and can be used again: zero it first, free it at last. */
typedef struct DictionaryReplacement {
    char* bytes;           /**< the text as it is after the replacement; not NUL-terminated */
    size_t size;           /**< of that text, in bytes */
    size_t capacity;       /**< the room for that text, in bytes */
    DictionaryEdit* edits; /**< by start; none unless wantEdits is set */
    size_t editCount;      /**< how many edits there are */
    size_t editCapacity;   /**< the room for edits */
} DictionaryReplacement;

/** Replaces every key of a segmentation (mode SEGMENT or WEIGHTED; null options are SEGMENT) by a
 * data field and copies all else byte for byte. After an error the result is empty. */
DICTIONARY_EXPORT int dictionaryReplaceKeys(const DictionaryHandle* handle,
                                            const DictionaryFindOptions* findOptions,
                                            const DictionaryReplaceOptions* options,
                                            DictionaryText text, DictionaryReplacement* result,
                                            DictionaryError* error);

DICTIONARY_EXPORT void dictionaryFreeReplacement(DictionaryReplacement* result); /**< may be null */

/* ---- Building ---- */

/** Where a dictionary comes from: exactly one of `path`, `bytes.bytes` and `nextItem` is not null.
 */
typedef struct DictionarySource {
    size_t size;          /**< sizeof(DictionarySource) */
    const char* path;     /**< a source file, which may be a pipe */
    DictionaryText bytes; /**< a source in memory */
    /** Items in memory: fills `fields` with the next item's key and data fields, which must last
     * until the next call, and `count`; false after the last item. An item's number takes the place
     * of the line in errors, and a column counts the bytes of its fields with one between two.
     * Separators are data like anything else, but a tab or a NUL in an item is an error. An
     * exception that it throws stops the build and goes no further. */
    bool (*nextItem)(void* context, const DictionaryText** fields, size_t* count);
    void* context; /**< for nextItem */
} DictionarySource;

/** An image in memory, from malloc. */
typedef struct DictionaryImageBuffer {
    char* bytes; /**< the whole image; the caller's to free */
    size_t size; /**< in bytes */
} DictionaryImageBuffer;

/** Where the image goes: at most one of both is not null. With neither the source is only checked,
 * in little memory. */
typedef struct DictionaryTarget {
    size_t size;                   /**< sizeof(DictionaryTarget) */
    const char* path;              /**< an image file */
    DictionaryImageBuffer* buffer; /**< whatever it holds is overwritten; empty after an error */
} DictionaryTarget;

DICTIONARY_EXPORT void dictionaryFreeBuffer(DictionaryImageBuffer* buffer); /**< may be null */

/** What a build is at; the stages come in this order. */
enum DictionaryBuildStage {
    DICTIONARY_STAGE_READ = 0,  /**< done and total count bytes of the source, or items */
    DICTIONARY_STAGE_PLACE = 1, /**< done and total count keys that pass through nodes */
    DICTIONARY_STAGE_WRITE = 2  /**< done and total count bytes of the image */
};

/** How a source is read, and who learns what a build does. */
typedef struct DictionaryBuildOptions {
    size_t size;                 /**< sizeof(DictionaryBuildOptions) */
    const char* fieldSeparator;  /**< in the notation of getEscapeSeparator; null for a tab */
    const char* recordSeparator; /**< likewise; null for a newline */
    /** How many problems to report at most; 0 for 100. The first error is reported even so. */
    unsigned problemLimit;
    bool lenient;     /**< an empty key, illegal UTF-8, a carriage return at the end of a line and a
                         byte-order mark are warnings, and are taken as buildTree takes them */
    bool fromWindows; /**< a carriage return at the end of a line and a byte-order mark at the start
                         of the source belong to no field */
    bool allowEmpty;  /**< a source without records makes an empty image */
    bool folded; /**< letters are folded (see docs/words.md), in the keys and in whatever is looked
                    up */
    /** Called for each problem, in the order of the source. May be null. */
    void (*onProblem)(void* context, const DictionaryError* problem);
    /** Called now and then, and at the end of each stage, when `done` is `total`; before that a
     * `total` of 0 is not known yet, as that of a pipe. False stops the build. May be null. */
    bool (*onProgress)(void* context, int stage, uint64_t done, uint64_t total);
    void* context; /**< for both, which are called on the caller's thread; an exception that one of
                      them throws stops the build and goes no further */
} DictionaryBuildOptions;

/** What a build counted. */
typedef struct DictionaryBuildReport {
    size_t size;         /**< sizeof(DictionaryBuildReport) */
    uint64_t records;    /**< read, those with problems included */
    uint64_t keys;       /**< distinct ones in the image; 0 when none is made */
    uint64_t problems;   /**< found, those beyond the limit included */
    uint64_t imageBytes; /**< of the image made; 0 when none is */
} DictionaryBuildReport;

/** Builds the image file `image` from the source file `source`, which may be a pipe. See
 * dictionaryBuildFrom. */
DICTIONARY_EXPORT int dictionaryBuildFile(const char* source, const char* image,
                                          const DictionaryBuildOptions* options,
                                          DictionaryBuildReport* report, DictionaryError* error);

/** Builds an image. It has the bytes that buildTree makes of the same records, and keys may have
 * every Unicode character: one above U+FFFF is two labels, its UTF-16 surrogates, which buildTree
 * does not take and classic lookups pass by.
 *
 * An image file is written beside its place, synced and renamed: under its name is the old file or
 * the complete new one, at every moment. Only a process that is killed leaves the unfinished file,
 * `.NAME.` and letters. A symbolic link stays, and the file that it leads to is replaced; a new
 * image may be used by those who might use the old one. A folder, a device and a file that may not
 * be written are refused before the source is read.
 *
 * All problems of the source are reported, in its order; after the first error nothing is built any
 * more. Returns DICTIONARY_OK, or the code of the first error, which `error` has as well; a stopped
 * build is DICTIONARY_STOPPED. `report` may be null. */
DICTIONARY_EXPORT int dictionaryBuildFrom(const DictionarySource* source,
                                          const DictionaryTarget* target,
                                          const DictionaryBuildOptions* options,
                                          DictionaryBuildReport* report, DictionaryError* error);

/* ---- The library at hand ---- */

/** The version of the library that runs: "1.0.0". DictionaryVersion.h has that of the headers. */
DICTIONARY_EXPORT const char* dictionaryVersion(void);

#ifdef __cplusplus
}
#endif

#endif
