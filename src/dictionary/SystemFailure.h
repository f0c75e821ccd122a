// Helper, not installed: what builds throw if the system refuses a file.

#ifndef DICTIONARY_SYSTEM_FAILURE_H
#define DICTIONARY_SYSTEM_FAILURE_H

namespace Dictionary {

// The source cannot be read, or the image cannot be written.
struct SystemFailure {
    enum File { kSource, kImage } file;
    int error;  // errno
};

}  // namespace Dictionary

#endif
