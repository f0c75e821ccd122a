#include "FindTable.h"

#include <Dictionary.h>

#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "Characters.h"
#include "Error.h"
#include "Value.h"
#include "Words.h"

namespace dictionary_sqlite {

namespace {

// The hidden columns are the arguments, in their order.
constexpr char kSchema[] =
    "CREATE TABLE found(word TEXT, start INTEGER, length INTEGER, data TEXT,"
    " path HIDDEN, text HIDDEN, mode HIDDEN)";
enum Column { kWord, kStart, kLength, kData, kPath, kText, kMode, kColumns };
constexpr int kFirstArgument = kPath;
constexpr int kArguments = kColumns - kFirstArgument;
constexpr int kNeededArguments = 2;

class Cursor : public sqlite3_vtab_cursor {
public:
    Cursor() : sqlite3_vtab_cursor() {}

    void search(int count, sqlite3_value** arguments) {
        m_row = 0;
        m_passedBytes = 0;
        m_passedCharacters = 0;
        WordsOptions options;
        options.path = textOf(arguments[0]);
        options.mode = count > kNeededArguments ? modeOf(textOf(arguments[kNeededArguments]))
                                                : DICTIONARY_FIND_LONGEST;
        m_text = textOf(arguments[1]);
        m_words = Words::open(options);
        m_words->find(m_text, options.mode, m_matches);
        passTo();
    }

    bool atEnd() const { return m_row >= m_matches.size(); }
    std::size_t row() const { return m_row; }

    void next() {
        ++m_row;
        passTo();
    }

    void show(sqlite3_context* context, int column) const {
        const DictionaryMatch& match = m_matches[m_row];
        const std::string_view word = std::string_view(m_text).substr(match.start, match.length);
        switch (column) {
            case kWord:
                return text(context, word.data(), word.size());
            case kStart:
                return sqlite3_result_int64(context, m_passedCharacters + 1);
            case kLength:
                return sqlite3_result_int64(context, charactersIn(word));
            case kData:
                return text(context, match.data.bytes, match.data.size);
            default:
                return;
        }
    }

private:
    static void text(sqlite3_context* context, const char* bytes, std::size_t size) {
        sqlite3_result_text64(context, bytes, size, SQLITE_TRANSIENT, SQLITE_UTF8);
    }

    // Counts the characters before the row's word. Rows come in the order of their words' starts.
    void passTo() {
        if (atEnd()) return;
        const std::size_t start = m_matches[m_row].start;
        m_passedCharacters +=
            charactersIn(std::string_view(m_text).substr(m_passedBytes, start - m_passedBytes));
        m_passedBytes = start;
    }

    std::shared_ptr<const Words> m_words;
    std::string m_text;
    Matches m_matches;
    std::size_t m_row = 0;
    std::size_t m_passedBytes = 0;
    std::int64_t m_passedCharacters = 0;
};

int connect(sqlite3* database, void*, int, const char* const*, sqlite3_vtab** table, char**) {
    const int result = sqlite3_declare_vtab(database, kSchema);
    if (result != SQLITE_OK) return result;
    // It opens files, which the schema of a database of unknown origin must not do.
    sqlite3_vtab_config(database, SQLITE_VTAB_DIRECTONLY);
    *table = new (std::nothrow) sqlite3_vtab();
    return *table == nullptr ? SQLITE_NOMEM : SQLITE_OK;
}

int disconnect(sqlite3_vtab* table) {
    delete table;
    return SQLITE_OK;
}

// Has the arguments of the call passed to filter(), in their order.
int bestIndex(sqlite3_vtab* table, sqlite3_index_info* info) {
    int constraints[kArguments] = {-1, -1, -1};
    for (int i = 0; i < info->nConstraint; ++i) {
        const auto& constraint = info->aConstraint[i];
        const int argument = constraint.iColumn - kFirstArgument;
        if (argument < 0 || constraint.op != SQLITE_INDEX_CONSTRAINT_EQ) continue;
        if (!constraint.usable) return SQLITE_CONSTRAINT;
        constraints[argument] = i;
    }
    int given = 0;
    for (; given < kArguments && constraints[given] >= 0; ++given) {
        info->aConstraintUsage[constraints[given]].argvIndex = given + 1;
        info->aConstraintUsage[constraints[given]].omit = 1;
    }
    if (given < kNeededArguments) {
        table->zErrMsg = sqlite3_mprintf("dictionary_find needs the path of an image and a text");
        return SQLITE_ERROR;
    }
    constexpr double kCost = 1000;
    info->estimatedCost = kCost;
    return SQLITE_OK;
}

int open(sqlite3_vtab*, sqlite3_vtab_cursor** cursor) {
    *cursor = new (std::nothrow) Cursor;
    return *cursor == nullptr ? SQLITE_NOMEM : SQLITE_OK;
}

int close(sqlite3_vtab_cursor* cursor) {
    delete static_cast<Cursor*>(cursor);
    return SQLITE_OK;
}

int filter(sqlite3_vtab_cursor* cursor, int, const char*, int count, sqlite3_value** arguments) {
    try {
        static_cast<Cursor*>(cursor)->search(count, arguments);
        return SQLITE_OK;
    } catch (const Error& error) {
        sqlite3_free(cursor->pVtab->zErrMsg);
        cursor->pVtab->zErrMsg = sqlite3_mprintf("%s", error.what());
        return SQLITE_ERROR;
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    }
}

int next(sqlite3_vtab_cursor* cursor) {
    static_cast<Cursor*>(cursor)->next();
    return SQLITE_OK;
}

int eof(sqlite3_vtab_cursor* cursor) {
    return static_cast<Cursor*>(cursor)->atEnd();
}

int column(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int number) {
    static_cast<Cursor*>(cursor)->show(context, number);
    return SQLITE_OK;
}

int rowid(sqlite3_vtab_cursor* cursor, sqlite3_int64* row) {
    *row = static_cast<sqlite3_int64>(static_cast<Cursor*>(cursor)->row()) + 1;
    return SQLITE_OK;
}

sqlite3_module module() {
    sqlite3_module functions = {};
    functions.xConnect = connect;
    functions.xBestIndex = bestIndex;
    functions.xDisconnect = disconnect;
    functions.xOpen = open;
    functions.xClose = close;
    functions.xFilter = filter;
    functions.xNext = next;
    functions.xEof = eof;
    functions.xColumn = column;
    functions.xRowid = rowid;
    return functions;
}

}  // namespace

int registerFindTable(sqlite3* database) {
    static const sqlite3_module functions = module();
    return sqlite3_create_module(database, "dictionary_find", &functions, nullptr);
}

}  // namespace dictionary_sqlite
