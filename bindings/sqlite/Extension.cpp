// The entry point of the extension: `.load .../mod_dictionary` in the sqlite3 shell.

#include <sqlite3ext.h>

#include "FindTable.h"
#include "Functions.h"
#include "Tokenizer.h"

SQLITE_EXTENSION_INIT1

extern "C" __attribute__((visibility("default"))) int sqlite3_extension_init(
    sqlite3* database, char**, const sqlite3_api_routines* api) {
    SQLITE_EXTENSION_INIT2(api)
    using namespace dictionary_sqlite;
    int result = registerTokenizer(database);
    if (result == SQLITE_OK) result = registerFunctions(database);
    if (result == SQLITE_OK) result = registerFindTable(database);
    return result;
}
