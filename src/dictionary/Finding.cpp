// The functions of Dictionary.h that find keys in texts.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "CallerCallback.h"
#include "Dictionary.h"
#include "Errors.h"
#include "FindRequest.h"
#include "Handle.h"
#include "MatchList.h"
#include "TextFind.h"

namespace Dictionary {

namespace {

// A visitor of the caller's, whose exceptions go no further.
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
    const TextFind find = {*handle->images.front(), 0, options, readText(text)};
    if (!visitMatches(find, {Visitor::take, &visitor})) throw Failure{errorOf(DICTIONARY_STOPPED)};
}

void findInTexts(const DictionaryHandle* handle, const DictionaryFindOptions* given,
                 const DictionaryText* texts, std::size_t count, MatchList& list,
                 std::size_t* ends) {
    requireArgument(texts != nullptr || count == 0, "the texts are null");
    requireArgument(ends != nullptr || count == 0, "the ends are null");
    const DictionaryFindOptions options = readFindOptions(handle, given);
    for (std::size_t i = 0; i < count; ++i) {
        try {
            listMatches({*handle->images.front(), 0, options, readText(texts[i])}, list);
        } catch (Failure& failure) {
            failure.error.line = i + 1;
            throw;
        }
        ends[i] = list.count();
    }
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
        listMatches({*handle->images.front(), 0, read, readText(text)}, list);
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
        readFindOptions(handle, options);
        const std::string_view searched = readText(text);
        *contains = std::any_of(handle->images.begin(), handle->images.end(),
                                [&](const auto& image) { return containsKey(*image, searched); });
    });
}
