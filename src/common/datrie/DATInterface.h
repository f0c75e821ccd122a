/** @file
 * The dictionary as five plain functions, for hosts in C and in every language that calls C.
 *
 * Texts and paths are NUL-terminated; texts are UTF-8. No function returns a status: messages go
 * to the standard streams. Several threads may search one handle at once; destroyBin must not run
 * while a search on its handle is in progress.
 */

#ifndef DICTIONARY_DAT_INTERFACE_H
#define DICTIONARY_DAT_INTERFACE_H

#ifndef __cplusplus
#include <stdbool.h>
#endif

#include "DictionaryExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Builds the image file `binaryFileName` from the text source `sourceFileName`: one line per
 * record, with key and data fields separated by tabs. The last line ends with a newline like the
 * others. Progress goes to standard output, one line per record to standard error. Ends the process
 * with status 1, after a message on standard output, when the source cannot be opened or its name
 * is null. A line without a tab stops the build; the image written then holds no key and has 12
 * bytes. */
DICTIONARY_EXPORT void buildTree(const char* sourceFileName, const char* binaryFileName);

/** Maps the image file `fileName` and returns a handle to it, never null. When the file cannot be
 * opened or mapped (an empty file, say), a message goes to standard error and every search on the
 * handle finds nothing. When the file is shorter than its header says, searches find nothing
 * either, but there is no message. Nothing else in a file is checked: searching a damaged one may
 * crash. */
DICTIONARY_EXPORT void* loadBin(const char* fileName);

/** The longest key at every position of `text` where one starts, each followed by a tab: the key
 * alone, or, with `withFeatures`, key, "/", byte position, ":", feature text. A key right before a
 * character above U+FFFF is not found. With a null text or handle nothing is found. The result is
 * never null; release it with freeResult. It stays valid when the handle is destroyed. */
DICTIONARY_EXPORT char* search(const char* text, void* handle, bool withFeatures);

/** Releases a handle and its mapping. A null handle is ignored. */
DICTIONARY_EXPORT void destroyBin(void* handle);

/** Releases a string that search returned. */
DICTIONARY_EXPORT void freeResult(void* result);

#ifdef __cplusplus
}
#endif

#endif
