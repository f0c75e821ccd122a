/** @file
 * Marks what the shared library exports, and members of exported classes that stay inside it. */

#ifndef DICTIONARY_EXPORT_H
#define DICTIONARY_EXPORT_H

#if defined(__GNUC__)
#define DICTIONARY_EXPORT __attribute__((visibility("default")))
#define DICTIONARY_LOCAL __attribute__((visibility("hidden")))
#else
#define DICTIONARY_EXPORT
#define DICTIONARY_LOCAL
#endif

#endif
