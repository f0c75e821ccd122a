/* Lookups for hosts that want matches as records, texts of any bytes and lengths instead of NULs:
 * bindings to other languages first of all. Conventions as in DATChecked.h.
 *
 * Handles come from dictionaryOpen, or from loadBin when the image is known to be sound. A handle
 * without an image finds nothing. Searching is free of locks and of shared state.
 *
 * Texts are UTF-8. A byte that begins no legal sequence is passed over as a character of its own
 * that no key holds; so is a NUL. A character above U+FFFF is two labels in a key, its surrogates in
 * UTF-16; no key begins or ends between the two. DICTIONARY_FIND_AS_SEARCH alone differs.
 */

#ifndef DICTIONARY_DAT_MATCH_H
#define DICTIONARY_DAT_MATCH_H

#ifdef __cplusplus
#include <cstddef>
#else
#include <stdbool.h>
#include <stddef.h>
#endif

#include "DictionaryExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Which of the keys in a text are found. */
enum DictionaryFindMode {
    DICTIONARY_FIND_ALL = 0,      /* every key at every position, shortest first */
    DICTIONARY_FIND_LONGEST = 1,  /* the longest key at every position */
    DICTIONARY_FIND_SEGMENT = 2,  /* the longest key at the first position that has one, then the
                                     same behind it, and so on */
    DICTIONARY_FIND_AS_SEARCH = 3 /* what `search` finds, which stops at a NUL and at the first
                                     illegal byte and misses keys in front of a character above
                                     U+FFFF */
};

/* What `start` and `length` of a match count. A byte that begins no legal sequence counts as one
 * of each. */
enum DictionaryUnit {
    DICTIONARY_UNIT_BYTE = 0,       /* of UTF-8 */
    DICTIONARY_UNIT_CODE_POINT = 1, /* one for every character */
    DICTIONARY_UNIT_UTF16 = 2       /* 16-bit units of UTF-16: two for a character above U+FFFF */
};

/* A key found in a text. */
typedef struct DictionaryMatch {
    size_t start;      /* of the key in the text */
    size_t length;     /* of the key */
    const char* data;  /* the key's data text, never null; not NUL-terminated; lasts as long as the
                          handle */
    size_t dataLength; /* in bytes */
} DictionaryMatch;

/* A list that grows as needed and can be used again for the next text: zero it first, release it
 * at last. */
typedef struct DictionaryMatches {
    DictionaryMatch* items; /* the list's own */
    size_t count;           /* of the items found */
    size_t capacity;        /* the room for items */
} DictionaryMatches;

/* Puts the matches of the `size` bytes at `text` into `matches`, in place of what it held, by
 * start. False, with no matches, when memory is short, when the text is over 2,147,483,647 bytes
 * long, when mode or unit is none of the above or when `matches` is null. A `text` of 0 bytes may
 * be null. */
DICTIONARY_EXPORT bool dictionaryFind(const void* handle, int mode, int unit, const char* text,
                                      size_t size, DictionaryMatches* matches);

/* The same for `count` texts in one call: the matches of text i end in front of item ends[i]. One
 * text that cannot be searched makes all of it fail, with all `ends` 0. `ends` may be null. */
DICTIONARY_EXPORT bool dictionaryFindInEach(const void* handle, int mode, int unit,
                                            const char* const* texts, const size_t* sizes,
                                            size_t count, DictionaryMatches* matches, size_t* ends);

/* Releases the items of a list and leaves it empty. */
DICTIONARY_EXPORT void dictionaryReleaseMatches(DictionaryMatches* matches);

/* Whether the `size` bytes at `key` are a key, the whole of it; `data` and `dataLength` get its
 * data text as in a match, or null and 0. */
DICTIONARY_EXPORT bool dictionaryLookup(const void* handle, const char* key, size_t size,
                                        const char** data, size_t* dataLength);

#ifdef __cplusplus
}
#endif

#endif
