// The SQL functions dictionary_lookup(path, key) and dictionary_verify(path).

#ifndef DICTIONARY_SQLITE_FUNCTIONS_H
#define DICTIONARY_SQLITE_FUNCTIONS_H

#include <sqlite3ext.h>

namespace dictionary_sqlite {

// Registers the functions with a connection. Returns SQLite's result code.
int registerFunctions(sqlite3* database);

}  // namespace dictionary_sqlite

#endif
