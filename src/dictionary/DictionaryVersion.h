/** @file
 * The version of these headers, for the preprocessor. dictionaryVersion() of Dictionary.h returns
 * the version of the library that runs, so a host can compare the two. The build takes the version
 * of the whole project from here.
 */

#ifndef DICTIONARY_VERSION_H
#define DICTIONARY_VERSION_H

/** Increases when hosts must be recompiled or changed. It is also in the shared library's name. */
#define DICTIONARY_VERSION_MAJOR 1
/** Increases when something is added. */
#define DICTIONARY_VERSION_MINOR 0
/** Increases when something is fixed. */
#define DICTIONARY_VERSION_PATCH 0

#define DICTIONARY_VERSION_DOTTED(major, minor, patch) #major "." #minor "." #patch
#define DICTIONARY_VERSION_EXPANDED(major, minor, patch) \
    DICTIONARY_VERSION_DOTTED(major, minor, patch)

/** The three numbers as one string: "1.0.0". */
#define DICTIONARY_VERSION                                                          \
    DICTIONARY_VERSION_EXPANDED(DICTIONARY_VERSION_MAJOR, DICTIONARY_VERSION_MINOR, \
                                DICTIONARY_VERSION_PATCH)

#endif
