// Helper, not installed: the search of the entry points, from an image to the result string.

#ifndef DICTIONARY_IMAGE_SEARCH_H
#define DICTIONARY_IMAGE_SEARCH_H

#include "UTF8Coder.h"

namespace Dictionary {

// What CDictionayApp::returnListStr makes of the result of allMatch, without the lists in between.
// A null image or text finds nothing. The caller releases the string with free(). Never null.
char* searchImage(const void* image, ICoderInterface& coder, const char* text, bool withFeatures);

}  // namespace Dictionary

#endif
