// The FTS5 tokenizer: tokenize = "dictionary '/path/words.bin' mode all".

#ifndef DICTIONARY_SQLITE_TOKENIZER_H
#define DICTIONARY_SQLITE_TOKENIZER_H

#include <sqlite3ext.h>

namespace dictionary_sqlite {

// Registers the tokenizer with a connection, and the SQL function dictionary_error(), which returns
// why the connection last refused a tokenizer. Returns SQLite's result code. Does nothing if there
// is no FTS5.
int registerTokenizer(sqlite3* database);

}  // namespace dictionary_sqlite

#endif
