// Helper, not installed: reads the caller's structs that begin with their size.

#ifndef DICTIONARY_READ_STRUCT_H
#define DICTIONARY_READ_STRUCT_H

#include "Errors.h"

namespace Dictionary {

// A copy of the struct; for null, one with all other members zero. Throws DICTIONARY_BAD_ARGUMENT
// with the text `wrongSize` if it has another size.
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
