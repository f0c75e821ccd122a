// Helper, not installed: looks up many whole keys at once.

#ifndef DICTIONARY_MANY_LOOKUPS_H
#define DICTIONARY_MANY_LOOKUPS_H

#include <cstddef>

#include "Dictionary.h"
#include "ImageFormat.h"

namespace Dictionary {

// Sets data[i] to the data text of keys[i] if that is a key of the image, and leaves it as it is
// if not. Keys whose data is there already, not null, are passed by. Returns how many were found.
std::size_t lookUpEach(const ImageView& image, const DictionaryText* keys, std::size_t count,
                       DictionaryText* data);

}  // namespace Dictionary

#endif
