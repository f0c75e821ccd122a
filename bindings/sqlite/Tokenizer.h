// The FTS5 tokenizer: tokenize = "dictionary '/path/words.bin' mode all".

#ifndef DICTIONARY_SQLITE_TOKENIZER_H
#define DICTIONARY_SQLITE_TOKENIZER_H

#include <sqlite3ext.h>

namespace dictionary_sqlite {

// Makes the tokenizer known to a connection, with the SQL function dictionary_error(), which
// returns why the connection refused one last. Returns SQLite's result code. Without FTS5 it does
// nothing.
int registerTokenizer(sqlite3* database);

}  // namespace dictionary_sqlite

#endif
