// Helper, not installed: the options of a search, found to be right.

#ifndef DICTIONARY_FIND_REQUEST_H
#define DICTIONARY_FIND_REQUEST_H

#include <string_view>

#include "Dictionary.h"

namespace Dictionary {

// Throws DICTIONARY_BAD_ARGUMENT where the options, which may be null, cannot be met on the handle.
DictionaryFindOptions readFindOptions(const DictionaryHandle* handle,
                                      const DictionaryFindOptions* options);

// Throws DICTIONARY_BAD_ARGUMENT for null with a size, and DICTIONARY_TEXT_TOO_LONG.
std::string_view readText(DictionaryText text);

}  // namespace Dictionary

#endif
