#include "WordBoundary.h"

namespace Dictionary {

// Whether the marks before `place` follow a letter.
bool Words::marksAreOfLetter(std::size_t place) const {
    WordClass before = WordClass::kMark;
    while (place > 0 && before == WordClass::kMark) {
        const std::int32_t code = codeBefore(place);
        before = wordClassOf(code);
        place -= isLowSurrogate(m_codes[place - 1]) ? 2 : 1;
    }
    return before == WordClass::kLetter;
}

}  // namespace Dictionary
