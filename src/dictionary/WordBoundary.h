// Helper, not installed: where the words of a text begin and end; see docs/words.md.

#ifndef DICTIONARY_WORD_BOUNDARY_H
#define DICTIONARY_WORD_BOUNDARY_H

#include <cstddef>
#include <cstdint>

#include "UnicodeTables.h"

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
    // Han, among others. The processor predicts this branch well.
    if (bits - kFirstWordless <= kLastWordless - kFirstWordless) return WordClass::kNone;
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

// The words of a text, which must outlive the object: a MappedText or an EncodedText.
template <class Text>
class Words {
public:
    explicit Words(const Text& text) : m_text(text) {}

    // Whether both sides of `place` belong to one word.
    bool isInside(std::size_t place) const {
        if (place == 0 || place == m_text.size()) return false;
        return wordClassOf(m_text.characterAt(place)) != WordClass::kNone && followsWord(place);
    }

    // Whether what is before `place` belongs to a word.
    bool followsWord(std::size_t place) const {
        WordClass before = WordClass::kMark;
        while (place > 0 && before == WordClass::kMark) {
            before = wordClassOf(m_text.previous(place));
        }
        return before == WordClass::kLetter;
    }

private:
    const Text& m_text;
};

}  // namespace Dictionary

#endif
