#include "Functions.h"

#include <Dictionary.h>

#include <memory>
#include <new>

#include "Error.h"
#include "Value.h"
#include "Words.h"

namespace dictionary_sqlite {

namespace {

using Opened = std::shared_ptr<const Words>;

// The image that the first argument names. A statement that names the same image for each row keeps
// it open.
const Words& openOnce(sqlite3_context* context, sqlite3_value** arguments, Opened& opened) {
    if (const void* kept = sqlite3_get_auxdata(context, 0)) {
        return **static_cast<const Opened*>(kept);
    }
    WordsOptions options;
    options.path = textOf(arguments[0]);
    opened = Words::open(options);
    sqlite3_set_auxdata(context, 0, new Opened(opened),
                        [](void* kept) { delete static_cast<Opened*>(kept); });
    return *opened;
}

// Runs `work`, which sets the result. Nothing may be thrown through SQLite.
template <class Work>
void answer(sqlite3_context* context, Work work) {
    try {
        work();
    } catch (const Error& error) {
        sqlite3_result_error(context, error.what(), -1);
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    }
}

// The data text of a key, or NULL if there is no such key.
void lookup(sqlite3_context* context, int, sqlite3_value** arguments) {
    answer(context, [&] {
        Opened opened;
        const Words& words = openOnce(context, arguments, opened);
        const std::string key = textOf(arguments[1]);
        DictionaryText data = {nullptr, 0};
        if (!dictionaryLookupKey(words.handle(), {key.data(), key.size()}, &data)) return;
        sqlite3_result_text64(context, data.bytes, data.size, SQLITE_TRANSIENT, SQLITE_UTF8);
    });
}

// "ok", or an error that says what is wrong with the image.
void verify(sqlite3_context* context, int, sqlite3_value** arguments) {
    answer(context, [&] {
        DictionaryError error;
        check(dictionaryVerifyImage(textOf(arguments[0]).c_str(), &error), error);
        sqlite3_result_text(context, "ok", -1, SQLITE_STATIC);
    });
}

}  // namespace

int registerFunctions(sqlite3* database) {
    // They open files, which the schema of a database of unknown origin must not do.
    constexpr int kFlags = SQLITE_UTF8 | SQLITE_DIRECTONLY;
    const int result = sqlite3_create_function(database, "dictionary_lookup", 2, kFlags, nullptr,
                                               lookup, nullptr, nullptr);
    if (result != SQLITE_OK) return result;
    return sqlite3_create_function(database, "dictionary_verify", 1, kFlags, nullptr, verify,
                                   nullptr, nullptr);
}

}  // namespace dictionary_sqlite
