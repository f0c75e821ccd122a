#include "Unicode61.h"

#include <new>

#include "Error.h"

SQLITE_EXTENSION_INIT3

namespace dictionary_sqlite {

namespace {

struct Sink {
    std::vector<FoldedWord>& words;
    std::size_t offset;
};

// Nothing may be thrown through SQLite.
int add(void* context, int, const char* token, int size, int start, int end) {
    const Sink& sink = *static_cast<Sink*>(context);
    try {
        sink.words.push_back({sink.offset + static_cast<std::size_t>(start),
                              sink.offset + static_cast<std::size_t>(end),
                              std::string(token, static_cast<std::size_t>(size))});
        return SQLITE_OK;
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    }
}

}  // namespace

Unicode61::Unicode61(fts5_api& api, std::vector<const char*> arguments) {
    void* context = nullptr;
    if (api.xFindTokenizer(&api, "unicode61", &context, &m_functions) != SQLITE_OK) {
        throw Error("this SQLite has no tokenizer unicode61");
    }
    const int count = static_cast<int>(arguments.size());
    if (m_functions.xCreate(context, arguments.data(), count, &m_tokenizer) != SQLITE_OK) {
        throw Error("unicode61 refuses the arguments after the dictionary's own");
    }
}

Unicode61::~Unicode61() {
    m_functions.xDelete(m_tokenizer);
}

void Unicode61::tokenize(std::string_view text, int reason, std::size_t offset,
                         std::vector<FoldedWord>& words) const {
    Sink sink = {words, offset};
    const int size = static_cast<int>(text.size());
    if (m_functions.xTokenize(m_tokenizer, &sink, reason, text.data(), size, add) != SQLITE_OK) {
        throw std::bad_alloc();
    }
}

}  // namespace dictionary_sqlite
