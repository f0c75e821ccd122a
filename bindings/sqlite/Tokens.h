// The tokens of a text: its units, and the words of a dictionary over them.
//
// A word of the dictionary is a token if it covers units of scripts that are written without
// blanks. Where words may overlap (modes ALL and LONGEST), each unit is a position of the index,
// and a word is one more token at the position of its first unit. So a phrase is found wherever its
// words begin and end. In the other modes (SEGMENT and WEIGHTED), a word takes the place of its
// units.

#ifndef DICTIONARY_SQLITE_TOKENS_H
#define DICTIONARY_SQLITE_TOKENS_H

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "Units.h"
#include "Words.h"

namespace dictionary_sqlite {

struct Token {
    std::string_view text;
    std::size_t start;  // byte in the text that was cut
    std::size_t end;    // exclusive
    bool samePosition;  // as the token before
};

class Tokens {
public:
    // `unicode61` must outlive the object.
    Tokens(std::shared_ptr<const Words> words, const Unicode61& unicode61)
        : m_words(std::move(words)), m_units(unicode61) {}

    // The tokens of a text that is stored, or of a query, which is cut by the longest words. They
    // last until the next call, as long as the text does. `reason` is xTokenize's. Throws an Error.
    const std::vector<Token>& ofDocument(std::string_view text, int reason);
    const std::vector<Token>& ofQuery(std::string_view text, int reason);

private:
    // A word of the dictionary and the numbers of the units under it.
    struct Word {
        std::size_t start;  // byte in the text
        std::size_t end;    // exclusive
        std::size_t firstUnit;
        std::size_t endUnit;  // exclusive
    };

    void cut(std::string_view text, int reason, int mode);
    void addUnitsOfSymbols();
    void placeWords();
    bool covers(const DictionaryMatch& match, Word& word) const;
    const Word* longestAt(std::size_t unit, std::size_t endUnit) const;
    void addUnit(std::size_t unit);
    void addWord(const Word& word, bool samePosition);
    void addOverlapping();
    void addPieces();
    void addWithCovered();

    std::shared_ptr<const Words> m_words;
    Units m_units;
    std::string_view m_text;
    std::vector<Unit> m_textUnits;
    Matches m_matches;
    std::vector<Word> m_placed;              // by firstUnit, shortest first
    std::vector<std::size_t> m_firstPlaced;  // for each unit, the first word there or after it
    std::vector<Token> m_tokens;
};

}  // namespace dictionary_sqlite

#endif
