// Helper, not installed: structs of the caller's that begin with their size.

#ifndef DICTIONARY_READ_STRUCT_H
#define DICTIONARY_READ_STRUCT_H

#include "Errors.h"

namespace Dictionary {

// The struct that was given; for null one with all else zero. Throws DICTIONARY_BAD_ARGUMENT with
// the text `wrongSize` for any other size.
template <class Struct>
Struct readStruct(const Struct* given, const char* wrongSize) {
    Struct read = {};
    read.size = sizeof read;
    if (given != nullptr) read = *given;
    requireArgument(read.size == sizeof read, wrongSize);
    return read;
}

}  // namespace Dictionary

#endif
