// Helper, not installed: looks up many whole keys at once.

#ifndef DICTIONARY_MANY_LOOKUPS_H
#define DICTIONARY_MANY_LOOKUPS_H

#include <cstddef>

#include "Dictionary.h"
#include "ImageFormat.h"

namespace Dictionary {

// Sets data[i] to the data text of keys[i] if that is a key of the image. If not, data[i] stays as
// it is. Skips keys whose data is already there, not null. Returns how many keys it found.
std::size_t lookUpEach(const ImageView& image, const DictionaryText* keys, std::size_t count,
                       DictionaryText* data);

}  // namespace Dictionary

#endif
