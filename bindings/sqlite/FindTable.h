// The table-valued SQL function dictionary_find(path, text [, mode]): one row for each word found.

#ifndef DICTIONARY_SQLITE_FIND_TABLE_H
#define DICTIONARY_SQLITE_FIND_TABLE_H

#include <sqlite3ext.h>

namespace dictionary_sqlite {

// Registers the table with a connection. Returns SQLite's result code.
int registerFindTable(sqlite3* database);

}  // namespace dictionary_sqlite

#endif
