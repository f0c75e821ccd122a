#include "Tokenizer.h"

#include <Dictionary.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "Error.h"
#include "Tokens.h"

SQLITE_EXTENSION_INIT3

namespace dictionary_sqlite {

namespace {

// What the tokenizers of a connection share.
struct Connection {
    fts5_api* api;
    std::string lastError;
};

template <class Number>
Number numberOf(std::string_view option, std::string_view text) {
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec == std::errc() && read.ptr == end) return number;
    throw Error(std::string(option) + " " + std::string(text) + " is not a number");
}

// The arguments of a tokenizer: the image, then options in pairs.
struct Arguments {
    WordsOptions words;
    std::vector<const char*> rest;  // for unicode61

    Arguments(const char** arguments, int count) {
        if (count < 1) throw Error("the path of an image is missing");
        words.path = arguments[0];
        for (int i = 1; i < count; i += 2) {
            if (i + 1 == count) throw Error(std::string(arguments[i]) + " has no value");
            take(arguments[i], arguments[i + 1]);
        }
    }

private:
    void take(const char* option, const char* value) {
        const std::string_view name = option;
        if (name == "mode") {
            words.mode = modeOf(value);
        } else if (name == "count_field") {
            words.weights.weights = DICTIONARY_WEIGHTS_COUNTS;
            words.weights.field = numberOf<unsigned>(name, value);
        } else if (name == "cost_field") {
            words.weights.weights = DICTIONARY_WEIGHTS_COSTS;
            words.weights.field = numberOf<unsigned>(name, value);
        } else if (name == "unknown_cost") {
            words.weights.unknownCost = numberOf<double>(name, value);
        } else {
            rest.insert(rest.end(), {option, value});
        }
    }
};

class Tokenizer {
public:
    Tokenizer(fts5_api& api, const Arguments& arguments)
        : m_unicode61(api, arguments.rest), m_tokens(Words::open(arguments.words), m_unicode61) {}

    const std::vector<Token>& tokensOf(std::string_view text, int reason) {
        const bool isQuery = (reason & FTS5_TOKENIZE_QUERY) != 0;
        return isQuery ? m_tokens.ofQuery(text, reason) : m_tokens.ofDocument(text, reason);
    }

private:
    Unicode61 m_unicode61;
    Tokens m_tokens;
};

// Runs `work`, which returns a result code. Nothing may be thrown through SQLite.
template <class Work>
int guarded(Work work, std::string* message) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    } catch (const Error& error) {
        sqlite3_log(SQLITE_ERROR, "dictionary: %s", error.what());
        if (message != nullptr) *message = error.what();
        return SQLITE_ERROR;
    }
}

int create(void* context, const char** arguments, int count, Fts5Tokenizer** made) {
    Connection& connection = *static_cast<Connection*>(context);
    const auto make = [&] {
        auto* const tokenizer = new Tokenizer(*connection.api, Arguments(arguments, count));
        *made = reinterpret_cast<Fts5Tokenizer*>(tokenizer);
        return SQLITE_OK;
    };
    return guarded(make, &connection.lastError);
}

void destroy(Fts5Tokenizer* tokenizer) {
    delete reinterpret_cast<Tokenizer*>(tokenizer);
}

using OnToken = int (*)(void*, int, const char*, int, int, int);

int tokenize(Fts5Tokenizer* tokenizer, void* context, int reason, const char* text, int size,
             OnToken onToken) {
    const std::string_view bytes(text, text == nullptr ? 0 : static_cast<std::size_t>(size));
    const auto pass = [&] {
        for (const Token& token :
             reinterpret_cast<Tokenizer*>(tokenizer)->tokensOf(bytes, reason)) {
            const int result = onToken(context, token.samePosition ? FTS5_TOKEN_COLOCATED : 0,
                                       token.text.data(), static_cast<int>(token.text.size()),
                                       static_cast<int>(token.start), static_cast<int>(token.end));
            if (result != SQLITE_OK) return result;
        }
        return SQLITE_OK;
    };
    return guarded(pass, nullptr);
}

// Why a tokenizer was refused, which FTS5 does not report.
void lastError(sqlite3_context* context, int, sqlite3_value**) {
    const std::string& text = static_cast<Connection*>(sqlite3_user_data(context))->lastError;
    if (text.empty()) return sqlite3_result_null(context);
    sqlite3_result_text(context, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

fts5_api* apiOf(sqlite3* database) {
    fts5_api* api = nullptr;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database, "SELECT fts5(?1)", -1, &statement, nullptr) == SQLITE_OK) {
        sqlite3_bind_pointer(statement, 1, &api, "fts5_api_ptr", nullptr);
        sqlite3_step(statement);
    }
    sqlite3_finalize(statement);
    return api;
}

}  // namespace

int registerTokenizer(sqlite3* database) {
    fts5_api* const api = apiOf(database);
    if (api == nullptr) return SQLITE_OK;
    auto* const connection = new (std::nothrow) Connection{api, {}};
    if (connection == nullptr) return SQLITE_NOMEM;
    const auto release = [](void* context) { delete static_cast<Connection*>(context); };
    fts5_tokenizer functions = {create, destroy, tokenize};
    const int result = api->xCreateTokenizer(api, "dictionary", connection, &functions, release);
    if (result != SQLITE_OK) return result;
    // Tokenizers and functions are both released when the database connection is closed.
    return sqlite3_create_function_v2(database, "dictionary_error", 0, SQLITE_UTF8, connection,
                                      lastError, nullptr, nullptr, nullptr);
}

}  // namespace dictionary_sqlite
