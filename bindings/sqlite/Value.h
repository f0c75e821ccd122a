// Arguments of SQL functions.

#ifndef DICTIONARY_SQLITE_VALUE_H
#define DICTIONARY_SQLITE_VALUE_H

#include <sqlite3ext.h>

#include <cstddef>
#include <string>

SQLITE_EXTENSION_INIT3

namespace dictionary_sqlite {

// The bytes of a text or a BLOB, the text of a number, or nothing for NULL.
inline std::string textOf(sqlite3_value* value) {
    const void* const bytes = sqlite3_value_blob(value);
    const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
    return bytes == nullptr ? std::string() : std::string(static_cast<const char*>(bytes), size);
}

}  // namespace dictionary_sqlite

#endif
