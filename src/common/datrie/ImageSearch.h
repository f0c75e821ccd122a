// Helper, not installed: the search of the entry points, from an image to the result string.

#ifndef DICTIONARY_IMAGE_SEARCH_H
#define DICTIONARY_IMAGE_SEARCH_H

#include "UTF8Coder.h"

namespace Dictionary {

// The string that CDictionayApp::returnListStr makes from the result of allMatch, but without
// building the lists. Nothing is found if the image or the text is null. The caller releases the
// string with free(). Never null.
char* searchImage(const void* image, ICoderInterface& coder, const char* text, bool withFeatures);

}  // namespace Dictionary

#endif
