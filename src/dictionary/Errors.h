// Helper, not installed: error records, and how exceptions become error records.

#ifndef DICTIONARY_ERRORS_H
#define DICTIONARY_ERRORS_H

#include "Dictionary.h"

namespace Dictionary {

// A row of the table of all codes.
struct CodeKind {
    int code;
    const char* name;
    DictionarySeverity severity;
    DictionarySeverity lenientSeverity;  // in a lenient build
    const char* text;                    // what is wrong and what to do about it
};

// The row of a code. All unknown codes have the same row.
const CodeKind& codeKindOf(int code);

// Thrown inside the library; `guarded` makes it the error of a call.
struct Failure {
    DictionaryError error;
};

// An error without a file and a place, with the text of its code or with `text`.
DictionaryError errorOf(int code);
DictionaryError errorOf(int code, const char* text);

// Throws DICTIONARY_BAD_ARGUMENT; `text` says what is wrong with which argument.
[[noreturn]] void refuseArgument(const char* text);
inline void requireArgument(bool isRight, const char* text) {
    if (!isRight) refuseArgument(text);
}

// Throws `code` with the system's error for a file, but DICTIONARY_NO_MEMORY for ENOMEM.
[[noreturn]] void failOnFile(int code, DictionaryFile file, const char* path, int systemError);

// The record of the exception that is being handled.
DictionaryError errorInFlight();

// Makes `error`, which may be null, the record of a call that succeeded.
void setNoError(DictionaryError* error);

// Calls `action` and returns DICTIONARY_OK, or the code of what it throws. Fills `error`, which may
// be null.
template <class Action>
int guarded(DictionaryError* error, const Action& action) {
    try {
        action();
        setNoError(error);
        return DICTIONARY_OK;
    } catch (...) {
        const DictionaryError found = errorInFlight();
        if (error != nullptr) *error = found;
        return found.code;
    }
}

}  // namespace Dictionary

#endif
