// The tokenizer unicode61, which comes with FTS5.

#ifndef DICTIONARY_SQLITE_UNICODE61_H
#define DICTIONARY_SQLITE_UNICODE61_H

#include <sqlite3ext.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace dictionary_sqlite {

struct FoldedWord {
    std::size_t start;  // byte in the text
    std::size_t end;    // exclusive
    std::string token;  // in lower case, as unicode61 folds it
};

class Unicode61 {
public:
    // `arguments` are those of `tokenize = "unicode61 ..."`. Throws an Error.
    Unicode61(fts5_api& api, std::vector<const char*> arguments);
    ~Unicode61();
    Unicode61(const Unicode61&) = delete;
    Unicode61& operator=(const Unicode61&) = delete;

    // Appends the words of `text`, with `offset` added to their places. `reason` is xTokenize's.
    void tokenize(std::string_view text, int reason, std::size_t offset,
                  std::vector<FoldedWord>& words) const;

private:
    fts5_tokenizer m_functions = {};
    Fts5Tokenizer* m_tokenizer = nullptr;
};

}  // namespace dictionary_sqlite

#endif
