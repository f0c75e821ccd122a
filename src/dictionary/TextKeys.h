// Helper, not installed: the keys of a search, place by place.

#ifndef DICTIONARY_TEXT_KEYS_H
#define DICTIONARY_TEXT_KEYS_H

#include "KeyScan.h"
#include "LabelText.h"
#include "SetKeys.h"
#include "TextFind.h"

namespace Dictionary {

inline const CellView& firstCells(const TextFind& find) {
    return find.handle.images.front()->view().cells();
}

// Whether plain walks in one image are enough.
inline bool isPlain(const TextFind& find) {
    return find.handle.images.size() == 1 && !find.handle.folded && !find.options.wholeWords;
}

inline SetRules rulesOf(const TextFind& find) {
    return {find.options.wholeWords, find.options.everyImage};
}

// Calls `use(keys, text)` with the keys that the options ask for and the text to which their places
// belong. Returns what it returns.
template <class Use>
bool withKeys(const TextFind& find, const Use& use) {
    if (isPlain(find)) {
        const LabelText text(find.text);
        ImageKeys<LabelText> keys(firstCells(find), text, kAlphabet);
        return use(keys, text);
    }
    SetKeys keys(find.handle.images, rulesOf(find), find.text);
    return use(keys, keys.text());
}

}  // namespace Dictionary

#endif
