// Errors for SQLite.

#ifndef DICTIONARY_SQLITE_ERROR_H
#define DICTIONARY_SQLITE_ERROR_H

#include <Dictionary.h>

#include <stdexcept>
#include <string>

namespace dictionary_sqlite {

// What is wrong, in words for a user of SQL.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The whole message of an error record.
inline std::string messageOf(const DictionaryError& error) {
    std::string message(dictionaryErrorMessage(&error, nullptr, 0), '\0');
    // The function writes a NUL after the message; the string has one there.
    dictionaryErrorMessage(&error, message.data(), message.size() + 1);
    return message;
}

inline void check(int code, const DictionaryError& error) {
    if (code != DICTIONARY_OK) throw Error(messageOf(error));
}

}  // namespace dictionary_sqlite

#endif
