/** @file
 * The version of these headers, for the preprocessor. dictionaryVersion() of Dictionary.h returns
 * that of the library that runs; a host may compare the two. The build takes the version of
 * the whole project from here.
 */

#ifndef DICTIONARY_VERSION_H
#define DICTIONARY_VERSION_H

/** Steps up when hosts must be compiled or written anew; names the shared library, too. */
#define DICTIONARY_VERSION_MAJOR 1
/** Steps up when something is added. */
#define DICTIONARY_VERSION_MINOR 0
/** Steps up when something is put right. */
#define DICTIONARY_VERSION_PATCH 0

#define DICTIONARY_VERSION_DOTTED(major, minor, patch) #major "." #minor "." #patch
#define DICTIONARY_VERSION_EXPANDED(major, minor, patch) \
    DICTIONARY_VERSION_DOTTED(major, minor, patch)

/** The three as one string: "1.0.0". */
#define DICTIONARY_VERSION                                                          \
    DICTIONARY_VERSION_EXPANDED(DICTIONARY_VERSION_MAJOR, DICTIONARY_VERSION_MINOR, \
                                DICTIONARY_VERSION_PATCH)

#endif
