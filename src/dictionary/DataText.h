// Helper, not installed: data texts as Dictionary.h returns them.

#ifndef DICTIONARY_DATA_TEXT_H
#define DICTIONARY_DATA_TEXT_H

#include <string_view>

#include "Dictionary.h"

namespace Dictionary {

// The data of anything that is not a key.
constexpr DictionaryText kNoText = {nullptr, 0};

// The bytes of a data text are never null, even if it is empty.
inline DictionaryText dataText(std::string_view data) {
    return {data.empty() ? "" : data.data(), data.size()};
}

}  // namespace Dictionary

#endif
