// Helper, not installed: the keys of one text in the images of a handle, by mode.

#ifndef DICTIONARY_TEXT_FIND_H
#define DICTIONARY_TEXT_FIND_H

#include <cstdint>
#include <string_view>

#include "ColumnList.h"
#include "Dictionary.h"
#include "Handle.h"
#include "MatchList.h"

namespace Dictionary {

class CheapestPath;

struct TextFind {
    const DictionaryHandle& handle;
    const DictionaryFindOptions& options;
    std::string_view text;
    CheapestPath* path = nullptr;  // that of the texts before, to reuse its memory; may be null
};

// Takes matches one by one, and returns false to stop.
struct MatchTaker {
    bool (*take)(void* context, const DictionaryMatch* match);
    void* context;

    bool operator()(const DictionaryMatch& match) const { return take(context, &match); }
};

// Appends all matches to the list.
void listMatches(const TextFind& find, MatchList& list);

// Appends all matches to the columns, as those of text number `text`.
void listColumns(const TextFind& find, std::uint32_t text, ColumnList& columns);

// Hands out the matches until the taker returns false. Returns false if it did.
bool visitMatches(const TextFind& find, const MatchTaker& taker);

// Whether any key is in the text.
bool containsKey(const TextFind& find);

}  // namespace Dictionary

#endif
