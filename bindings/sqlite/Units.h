// The units of a text, each of which is a position in a full-text index.
//
// A word of a script that is written with blanks is a unit. In other scripts each character is a
// unit, where unicode61 alone would take several characters for one word.

#ifndef DICTIONARY_SQLITE_UNITS_H
#define DICTIONARY_SQLITE_UNITS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Unicode61.h"

namespace dictionary_sqlite {

struct Unit {
    std::size_t start;  // byte in the text
    std::size_t end;    // exclusive
    std::string token;
    bool isWord;  // of a script that is written with blanks
};

class Units {
public:
    explicit Units(const Unicode61& unicode61) : m_unicode61(unicode61) {}

    // The units of `text`, by their starts. `reason` is xTokenize's.
    std::vector<Unit> of(std::string_view text, int reason);

private:
    void split(std::string_view text, const FoldedWord& word);

    const Unicode61& m_unicode61;
    int m_reason = 0;
    std::vector<FoldedWord> m_words;
    std::vector<Unit> m_units;
};

}  // namespace dictionary_sqlite

#endif
