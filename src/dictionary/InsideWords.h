// Helper, not installed: which places of an encoded text are inside words.

#ifndef DICTIONARY_INSIDE_WORDS_H
#define DICTIONARY_INSIDE_WORDS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "EncodedText.h"
#include "TextSearch.h"
#include "WordBoundary.h"

namespace Dictionary {

// Short texts take no memory from the heap.
class InsideWords {
public:
    // Looks at each place of the text, that at the end included.
    void find(const EncodedText& text) {
        const std::size_t places = text.size() + 1;
        std::uint8_t* const inside = roomFor(places + TextSearch::kClosedPadding);
        bool followsWord = false, isAnyInside = false;
        for (std::size_t place = 0; place < text.size(); ++place) {
            inside[place] = 0;
            if (text.isInsidePair(place)) continue;
            const WordClass at = wordClassOf(text.characterAt(place));
            const bool isInside = followsWord && at != WordClass::kNone;
            inside[place] = isInside ? 1 : 0;
            isAnyInside |= isInside;
            followsWord = at == WordClass::kLetter || (at == WordClass::kMark && followsWord);
        }
        std::fill_n(inside + text.size(), 1 + TextSearch::kClosedPadding, std::uint8_t{0});
        m_inside = isAnyInside ? inside : nullptr;
    }

    // By place, not 0 inside a word; null where none is, or before anything was found.
    const std::uint8_t* closedPlaces() const { return m_inside; }

private:
    static constexpr std::size_t kInlinePlaces = 256;

    std::uint8_t* roomFor(std::size_t places) {
        if (places <= sizeof m_inline) return m_inline;
        m_heap.reset(new std::uint8_t[places]);
        return m_heap.get();
    }

    const std::uint8_t* m_inside = nullptr;
    std::unique_ptr<std::uint8_t[]> m_heap;
    std::uint8_t m_inline[kInlinePlaces];
};

}  // namespace Dictionary

#endif
