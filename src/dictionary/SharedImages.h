// Helper, not installed: the images that this process has open in the mode SHARE.

#ifndef DICTIONARY_SHARED_IMAGES_H
#define DICTIONARY_SHARED_IMAGES_H

#include <sys/stat.h>

#include <memory>

#include "OpenImage.h"

namespace Dictionary {

using SharedImage = std::shared_ptr<const OpenImage>;

// The image of the file with that status if it is open and the file is unchanged; null otherwise.
SharedImage findShared(const struct stat& status);

// Offers an image of the file to later calls. Returns the one to use, which is a different one if
// another thread was faster.
SharedImage share(const struct stat& status, SharedImage image);

}  // namespace Dictionary

#endif
