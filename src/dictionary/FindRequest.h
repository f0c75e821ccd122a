// Helper, not installed: reads and checks the options of a search.

#ifndef DICTIONARY_FIND_REQUEST_H
#define DICTIONARY_FIND_REQUEST_H

#include <string_view>

#include "Dictionary.h"

namespace Dictionary {

// Throws DICTIONARY_BAD_ARGUMENT if the options, which may be null, do not fit each other or the
// handle.
DictionaryFindOptions readFindOptions(const DictionaryHandle* handle,
                                      const DictionaryFindOptions* options);

// Throws DICTIONARY_BAD_ARGUMENT for null with a size, and DICTIONARY_TEXT_TOO_LONG for a text that
// is too long.
std::string_view readText(DictionaryText text);

}  // namespace Dictionary

#endif
