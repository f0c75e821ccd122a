// Helper, not installed: where the words of a text begin and end; see docs/words.md.

#ifndef DICTIONARY_WORD_BOUNDARY_H
#define DICTIONARY_WORD_BOUNDARY_H

#include <cstddef>
#include <cstdint>

#include "EncodedText.h"
#include "UnicodeTables.h"
#include "Utf8Decoder.h"

namespace Dictionary {

enum class WordClass {
    kNone,
    kLetter,  // or digit, of a script that is written with blanks
    kMark     // goes with the character before it
};

inline WordClass wordClassOf(std::int32_t code) {
    constexpr std::uint32_t kRowShift = 5;
    constexpr std::uint32_t kBits = 2;
    const auto bits = static_cast<std::uint32_t>(code);
    const std::uint32_t block = bits >> kWordClassShift;
    if (block >= kWordClassBlockCount) {
        const bool isMark = bits - kFirstHighMark <= kLastHighMark - kFirstHighMark;
        return isMark ? WordClass::kMark : WordClass::kNone;
    }
    const std::uint32_t row = kWordClassBlocks[block] * kWordClassRowsPerBlock +
                              (bits >> kRowShift) % kWordClassRowsPerBlock;
    const std::uint32_t place = bits % (1u << kRowShift) * kBits;
    return static_cast<WordClass>(kWordClassRows[row] >> place & ((1u << kBits) - 1));
}

// The words of a text, which must outlive the object.
class Words {
public:
    explicit Words(const EncodedText& text) : m_codes(text.codes()), m_size(text.size()) {}

    // Whether both sides of `place` belong to one word.
    bool isInside(std::size_t place) const {
        if (place == 0 || place == m_size) return false;
        return wordClassOf(codeAt(place)) != WordClass::kNone && wordGoesOnTo(place);
    }

    // Whether the characters from `from` up to, but without, `end` begin and end with words, or
    // outside of them.
    bool areWhole(std::size_t from, std::size_t end) const {
        return !isInside(from) && !isInside(end);
    }

private:
    // Whether what stands before `place` belongs to a word.
    bool wordGoesOnTo(std::size_t place) const {
        const WordClass before = wordClassOf(codeBefore(place));
        return before == WordClass::kMark ? marksAreOfLetter(place) : before == WordClass::kLetter;
    }
    bool marksAreOfLetter(std::size_t place) const;

    std::int32_t codeAt(std::size_t place) const {
        const std::int32_t code = m_codes[place];
        return isHighSurrogate(code) ? codeOfPair(code, m_codes[place + 1]) : code;
    }
    std::int32_t codeBefore(std::size_t place) const {
        const std::int32_t code = m_codes[place - 1];
        return isLowSurrogate(code) ? codeOfPair(m_codes[place - 2], code) : code;
    }

    const std::int32_t* m_codes;
    std::size_t m_size;
};

}  // namespace Dictionary

#endif
