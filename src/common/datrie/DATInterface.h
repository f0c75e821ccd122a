/* The dictionary as five plain functions, for hosts in C and in every language that calls C.
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

/* Builds the image file `binaryFileName` from the text source `sourceFileName`: a record a line,
 * key and data fields set apart by tabs, the last line ended like the others. Progress goes to
 * standard output, a line a record to standard error. Ends the process with status 1 when the
 * source cannot be opened. A line without a tab stops the build; the image written then is
 * empty. */
DICTIONARY_EXPORT void buildTree(const char* sourceFileName, const char* binaryFileName);

/* Maps the image file `fileName` and returns a handle to it, never null. When the file cannot be
 * opened, a message goes to standard error and every search on the handle finds nothing; when it
 * cannot be mapped (an empty file, say), the handle must only be destroyed. */
DICTIONARY_EXPORT void* loadBin(const char* fileName);

/* The longest key at every position of `text` where one starts, each followed by a tab: the key
 * alone, or, with `withFeatures`, key, "/", byte position, ":", feature text. The result is never
 * null; release it with freeResult. It does not depend on the handle staying alive. */
DICTIONARY_EXPORT char* search(const char* text, void* handle, bool withFeatures);

/* Releases a handle and its mapping. A null handle is ignored. */
DICTIONARY_EXPORT void destroyBin(void* handle);

/* Releases a string that search returned. */
DICTIONARY_EXPORT void freeResult(void* result);

#ifdef __cplusplus
}
#endif

#endif
