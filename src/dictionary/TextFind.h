// Helper, not installed: the matches of one text in one image, by mode.

#ifndef DICTIONARY_TEXT_FIND_H
#define DICTIONARY_TEXT_FIND_H

#include <cstdint>
#include <string_view>

#include "Dictionary.h"
#include "MatchList.h"
#include "OpenImage.h"

namespace Dictionary {

// The codes of the characters in keys are below it.
constexpr std::int32_t kAlphabet = 0x10000;

struct TextFind {
    const OpenImage& image;
    std::uint32_t imageNumber;
    const DictionaryFindOptions& options;
    std::string_view text;
};

// Takes matches one by one, and returns false to stop.
struct MatchTaker {
    bool (*take)(void* context, const DictionaryMatch* match);
    void* context;

    bool operator()(const DictionaryMatch& match) const { return take(context, &match); }
};

// Appends all matches to the list.
void listMatches(const TextFind& find, MatchList& list);

// Hands out the matches until one is enough; false then.
bool visitMatches(const TextFind& find, const MatchTaker& taker);

// Whether any key is in the text.
bool containsKey(const OpenImage& image, std::string_view text);

}  // namespace Dictionary

#endif
