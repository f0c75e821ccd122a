// The functions of Dictionary.h that find keys in texts.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <optional>
#include <string_view>

#include "CallerCallback.h"
#include "CheapestPath.h"
#include "ColumnList.h"
#include "Dictionary.h"
#include "Errors.h"
#include "FindRequest.h"
#include "Handle.h"
#include "MatchList.h"
#include "Segmenter.h"
#include "TextFind.h"

namespace Dictionary {

namespace {

// The caller's visitor. If it throws, it counts as returning false.
struct Visitor {
    bool (*visit)(void* context, const DictionaryMatch* match);
    void* context;

    static bool take(void* self, const DictionaryMatch* match) {
        const Visitor& visitor = *static_cast<const Visitor*>(self);
        return callBack([&] { return visitor.visit(visitor.context, match); });
    }
};

void visit(const DictionaryHandle* handle, const DictionaryFindOptions* given, DictionaryText text,
           Visitor visitor) {
    requireArgument(visitor.visit != nullptr, "the visitor is null");
    const DictionaryFindOptions options = readFindOptions(handle, given);
    const TextFind find = {*handle, options, readText(text)};
    if (!visitMatches(find, {Visitor::take, &visitor})) throw Failure{errorOf(DICTIONARY_STOPPED)};
}

std::size_t bytesOf(const DictionaryText* texts, std::size_t count) {
    if (texts == nullptr) return 0;
    return std::accumulate(
        texts, texts + count, std::size_t{},
        [](std::size_t bytes, const DictionaryText& text) { return bytes + text.size; });
}

// Calls `find(number, text)` for each text. An error gets the number of its text.
template <class Find>
void forEachText(const DictionaryText* texts, std::size_t count, const Find& find) {
    requireArgument(texts != nullptr || count == 0, "the texts are null");
    for (std::size_t i = 0; i < count; ++i) {
        try {
            find(i, readText(texts[i]));
        } catch (Failure& failure) {
            failure.error.line = i + 1;
            throw;
        }
    }
}

// Segments several texts by weight, with the same memory.
class SharedPath {
public:
    explicit SharedPath(const DictionaryFindOptions& options) {
        if (options.mode != DICTIONARY_FIND_WEIGHTED) return;
        m_path.emplace(options.segmenter->weighted, options.wholeWords);
    }

    CheapestPath* get() { return m_path.has_value() ? &*m_path : nullptr; }

private:
    std::optional<CheapestPath> m_path;
};

void findInTexts(const DictionaryHandle* handle, const DictionaryFindOptions* given,
                 const DictionaryText* texts, std::size_t count, MatchList& list,
                 std::size_t* ends) {
    requireArgument(ends != nullptr || count == 0, "the ends are null");
    const DictionaryFindOptions options = readFindOptions(handle, given);
    SharedPath path(options);
    forEachText(texts, count, [&](std::size_t number, std::string_view text) {
        listMatches({*handle, options, text, path.get()}, list);
        ends[number] = list.count();
    });
}

void findColumns(const DictionaryHandle* handle, const DictionaryFindOptions* given,
                 const DictionaryText* texts, std::size_t count, ColumnList& columns) {
    requireArgument(count <= std::numeric_limits<std::uint32_t>::max(),
                    "there are more texts than columns can number");
    const DictionaryFindOptions options = readFindOptions(handle, given);
    SharedPath path(options);
    columns.expect(bytesOf(texts, count));
    forEachText(texts, count, [&](std::size_t number, std::string_view text) {
        listColumns({*handle, options, text, path.get()}, static_cast<std::uint32_t>(number),
                    columns);
        columns.passText(text.size());
    });
}

}  // namespace

}  // namespace Dictionary

using namespace Dictionary;

int dictionaryFindMatches(const DictionaryHandle* handle, const DictionaryFindOptions* options,
                          DictionaryText text, DictionaryMatches* matches, DictionaryError* error) {
    const int code = guarded(error, [&] {
        requireArgument(matches != nullptr, "the matches are null");
        MatchList list(*matches);
        const DictionaryFindOptions read = readFindOptions(handle, options);
        listMatches({*handle, read, readText(text)}, list);
    });
    if (code != DICTIONARY_OK && matches != nullptr) matches->count = 0;
    return code;
}

int dictionaryFindInTexts(const DictionaryHandle* handle, const DictionaryFindOptions* options,
                          const DictionaryText* texts, size_t count, DictionaryMatches* matches,
                          size_t* ends, DictionaryError* error) {
    const int code = guarded(error, [&] {
        requireArgument(matches != nullptr, "the matches are null");
        MatchList list(*matches);
        findInTexts(handle, options, texts, count, list, ends);
    });
    if (code == DICTIONARY_OK) return code;
    if (matches != nullptr) matches->count = 0;
    if (ends != nullptr) std::fill_n(ends, count, std::size_t{0});
    return code;
}

void dictionaryFreeMatches(DictionaryMatches* matches) {
    if (matches == nullptr) return;
    std::free(matches->items);
    *matches = {nullptr, 0, 0};
}

int dictionaryFindColumns(const DictionaryHandle* handle, const DictionaryFindOptions* options,
                          const DictionaryText* texts, size_t count, DictionaryColumns* columns,
                          DictionaryError* error) {
    const int code = guarded(error, [&] {
        requireArgument(columns != nullptr, "the columns are null");
        ColumnList list(*columns);
        findColumns(handle, options, texts, count, list);
    });
    if (code != DICTIONARY_OK && columns != nullptr) columns->count = 0;
    return code;
}

void dictionaryFreeColumns(DictionaryColumns* columns) {
    if (columns != nullptr) freeColumns(*columns);
}

int dictionaryVisitMatches(const DictionaryHandle* handle, const DictionaryFindOptions* options,
                           DictionaryText text,
                           bool (*visitor)(void* context, const DictionaryMatch* match),
                           void* context, DictionaryError* error) {
    return guarded(error, [&] { visit(handle, options, text, {visitor, context}); });
}

int dictionaryContainsKey(const DictionaryHandle* handle, const DictionaryFindOptions* options,
                          DictionaryText text, bool* contains, DictionaryError* error) {
    if (contains != nullptr) *contains = false;
    return guarded(error, [&] {
        requireArgument(contains != nullptr, "the place for the answer is null");
        const DictionaryFindOptions read = readFindOptions(handle, options);
        *contains = containsKey({*handle, read, readText(text)});
    });
}
