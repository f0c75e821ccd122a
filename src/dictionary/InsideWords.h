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
        std::uint8_t* const inside = roomFor(text.size() + 1 + TextSearch::kClosedPadding);
        const std::int32_t* const codes = text.codes();
        const bool isAnyInside =
            text.hasPairs()
                ? mark(text.size(), inside, [&](std::size_t place) { return classOf(text, place); })
                : mark(text.size(), inside,
                       [codes](std::size_t place) { return wordClassOf(codes[place]); });
        m_inside = isAnyInside ? inside : nullptr;
    }

    // By place, not 0 inside a word; null where none is, or before anything was found.
    const std::uint8_t* closedPlaces() const { return m_inside; }

private:
    static constexpr std::size_t kInlinePlaces = 256;

    // Returns whether any of the `size` places is inside a word.
    template <class ClassAt>
    static bool mark(std::size_t size, std::uint8_t* inside, ClassAt classAt) {
        bool followsWord = false, isAnyInside = false;
        for (std::size_t place = 0; place < size; ++place) {
            const WordClass at = classAt(place);
            const bool isInside = followsWord && at != WordClass::kNone;
            inside[place] = isInside ? 1 : 0;
            isAnyInside |= isInside;
            followsWord = at == WordClass::kLetter || (at == WordClass::kMark && followsWord);
        }
        std::fill_n(inside + size, 1 + TextSearch::kClosedPadding, std::uint8_t{0});
        return isAnyInside;
    }

    // The second label of a pair is a mark: it goes on with what the first one is.
    static WordClass classOf(const EncodedText& text, std::size_t place) {
        if (text.isInsidePair(place)) return WordClass::kMark;
        return wordClassOf(text.characterAt(place));
    }

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
