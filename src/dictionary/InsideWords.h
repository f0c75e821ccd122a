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
    // What is next to a text that is part of a longer one.
    struct Neighbours {
        bool followsWord = false;
        WordClass next = WordClass::kNone;
    };

    // Looks at each place of the text, including its end.
    void find(const EncodedText& text, const Neighbours& beside) {
        const std::size_t places = (text.size() + kBlock) / kBlock * kBlock;
        std::uint8_t* const bytes = roomFor(places + 1 + TextSearch::kClosedPadding);
        bytes[0] = beside.followsWord ? kLetter : std::uint8_t{0};
        std::uint8_t* const classes = bytes + 1;
        bool hasMarks = text.hasPairs() ? classifyEach(text, classes, places)
                                        : classifyBlocks(text, classes, places);
        classes[text.size()] = static_cast<std::uint8_t>(beside.next);
        hasMarks |= beside.next == WordClass::kMark;
        const bool isAnyInside = hasMarks ? joinMarked(bytes, places) : join(bytes, places);
        std::fill_n(bytes + places, 1 + TextSearch::kClosedPadding, std::uint8_t{0});
        m_inside = isAnyInside ? bytes : nullptr;
        m_isFound = true;
    }
    bool isFound() const { return m_isFound; }

    // By place: not 0 if it is inside a word. Null if no place is, or before find().
    const std::uint8_t* closedPlaces() const { return m_inside; }

private:
    static constexpr std::size_t kInlinePlaces = 256;
    static constexpr std::size_t kBlock = 16;  // characters that are classified together
    static_assert(kBlock <= EncodedText::kPadding, "a block may begin where the text ends");

    // Bits of a byte for each character.
    static constexpr std::uint8_t kLetter = static_cast<std::uint8_t>(WordClass::kLetter);
    static constexpr std::uint8_t kMark = static_cast<std::uint8_t>(WordClass::kMark);

    // ---- The class of each character; returns whether any is a mark ----

    static bool classifyBlocks(const EncodedText& text, std::uint8_t* classes, std::size_t places) {
        bool hasMarks = false;
        for (std::size_t first = 0; first < places; first += kBlock) {
            const std::int32_t* const codes = text.codes() + first;
            if (!classifyByRanges(codes, classes + first)) {
                hasMarks |= classifyByTable(codes, classes + first);
            }
        }
        return hasMarks;
    }

    // Needs no table and no branches, so that whole registers of characters are classified at once.
    // Returns false if a character is not among those that this knows.
    static bool classifyByRanges(const std::int32_t* codes, std::uint8_t* classes) {
        std::uint16_t known = 1;
        for (std::size_t i = 0; i < kBlock; ++i) {
            // As there are no pairs, only codes that are not characters lose bits.
            const auto code = static_cast<std::uint16_t>(codes[i]);
            classes[i] =
                isBetween(code, '0', '9') || isBetween(code, 'A', 'Z') || isBetween(code, 'a', 'z')
                    ? kLetter
                    : std::uint8_t{0};
            known &= static_cast<std::uint16_t>(isAsciiOrWordless(code));
        }
        return known != 0;
    }

    // Returns 1 or 0, so that clang sees bits of numbers being joined, and no conditions.
    static int isBetween(std::uint16_t code, std::uint16_t first, std::uint16_t last) {
        return static_cast<std::uint16_t>(code - first) <= last - first;
    }

    // Whether it is ASCII, or in one of the ranges for most punctuation, Kana, Bopomofo and Han.
    static int isAsciiOrWordless(std::uint16_t code) {
        return isBetween(code, 0, 0x7F) | isBetween(code, 0x200E, 0x2070) |
               isBetween(code, 0x2E30, 0x3029) | isBetween(code, 0x3030, 0x3098) |
               isBetween(code, 0x309B, 0x3130) | isBetween(code, kFirstWordless, kLastWordless) |
               isBetween(code, 0xFEFD, 0xFF0F) | isBetween(code, 0xFF1A, 0xFF20);
    }

    static bool classifyByTable(const std::int32_t* codes, std::uint8_t* classes) {
        bool hasMarks = false;
        for (std::size_t i = 0; i < kBlock; ++i) {
            classes[i] = static_cast<std::uint8_t>(wordClassOf(codes[i]));
            hasMarks |= classes[i] == kMark;
        }
        return hasMarks;
    }

    // For texts with pairs. There are always marks: the second labels of the pairs.
    static bool classifyEach(const EncodedText& text, std::uint8_t* classes, std::size_t places) {
        for (std::size_t place = 0; place < text.size(); ++place) {
            classes[place] = static_cast<std::uint8_t>(classOf(text, place));
        }
        std::fill(classes + text.size(), classes + places, std::uint8_t{0});
        return true;
    }

    // The second label of a pair is a mark, so it continues what the first one is.
    static WordClass classOf(const EncodedText& text, std::size_t place) {
        if (text.isInsidePair(place)) return WordClass::kMark;
        return wordClassOf(text.characterAt(place));
    }

    // ---- From classes, each in the byte after its place, to whether places are inside ----

    // Returns whether any place is inside a word.
    static bool join(std::uint8_t* bytes, std::size_t places) {
        std::uint8_t any = 0;
        for (std::size_t place = 0; place < places; ++place) {
            bytes[place] &= bytes[place + 1];
            any |= bytes[place];
        }
        return any != 0;
    }

    // The same if there are marks.
    static bool joinMarked(std::uint8_t* bytes, std::size_t places) {
        bool followsWord = bytes[0] != 0, isAnyInside = false;
        for (std::size_t place = 0; place < places; ++place) {
            const std::uint8_t at = bytes[place + 1];
            const bool isInside = followsWord && at != 0;
            bytes[place] = isInside ? 1 : 0;
            isAnyInside |= isInside;
            followsWord = at == kLetter || (at == kMark && followsWord);
        }
        return isAnyInside;
    }

    std::uint8_t* roomFor(std::size_t places) {
        if (places <= sizeof m_inline) return m_inline;
        m_heap.reset(new std::uint8_t[places]);
        return m_heap.get();
    }

    bool m_isFound = false;
    const std::uint8_t* m_inside = nullptr;
    std::unique_ptr<std::uint8_t[]> m_heap;
    std::uint8_t m_inline[kInlinePlaces];
};

}  // namespace Dictionary

#endif
