#include "Tokens.h"

#include <algorithm>
#include <string>

#include "Characters.h"

namespace dictionary_sqlite {

namespace {

bool wordsOverlap(int mode) {
    return mode == DICTIONARY_FIND_ALL || mode == DICTIONARY_FIND_LONGEST;
}

}  // namespace

const std::vector<Token>& Tokens::ofDocument(std::string_view text, int reason) {
    cut(text, reason, m_words->mode());
    wordsOverlap(m_words->mode()) ? addOverlapping() : addPieces();
    return m_tokens;
}

const std::vector<Token>& Tokens::ofQuery(std::string_view text, int reason) {
    const bool everyWordIsThere = m_words->mode() == DICTIONARY_FIND_ALL;
    cut(text, reason, everyWordIsThere ? DICTIONARY_FIND_ALL : DICTIONARY_FIND_SEGMENT);
    wordsOverlap(m_words->mode()) ? addWithCovered() : addPieces();
    return m_tokens;
}

void Tokens::cut(std::string_view text, int reason, int mode) {
    m_text = text;
    m_tokens.clear();
    m_textUnits = m_units.of(text, reason);
    m_words->find(text, mode, m_matches);
    addUnitsOfSymbols();
    placeWords();
}

// Where a word begins with a character that unicode61 passes over, it becomes a unit.
void Tokens::addUnitsOfSymbols() {
    const std::size_t count = m_textUnits.size();
    std::size_t next = 0;
    std::size_t done = 0;
    for (const DictionaryMatch& match : m_matches) {
        while (next < count && m_textUnits[next].end <= match.start) ++next;
        if (match.start < done || (next < count && m_textUnits[next].start <= match.start))
            continue;
        done = endOfCharacter(m_text, match.start);
        m_textUnits.push_back({match.start, done,
                               std::string(m_text.substr(match.start, done - match.start)), false});
    }
    std::inplace_merge(m_textUnits.begin(),
                       m_textUnits.begin() + static_cast<std::ptrdiff_t>(count), m_textUnits.end(),
                       [](const Unit& a, const Unit& b) { return a.start < b.start; });
}

void Tokens::placeWords() {
    m_placed.clear();
    m_firstPlaced.assign(m_textUnits.size() + 1, 0);
    Word word = {0, 0, 0, 0};
    for (const DictionaryMatch& match : m_matches) {
        while (word.firstUnit < m_textUnits.size() &&
               m_textUnits[word.firstUnit].start < match.start) {
            m_firstPlaced[++word.firstUnit] = m_placed.size();
        }
        if (covers(match, word)) m_placed.push_back(word);
    }
    for (std::size_t unit = word.firstUnit; unit < m_textUnits.size();) {
        m_firstPlaced[++unit] = m_placed.size();
    }
}

// Whether a match is a token of its own: it covers several units, none of which is a word itself.
// `word` comes with its first unit; the other members are set here.
bool Tokens::covers(const DictionaryMatch& match, Word& word) const {
    word.start = match.start;
    word.end = match.start + match.length;
    word.endUnit = word.firstUnit;
    while (word.endUnit < m_textUnits.size() && m_textUnits[word.endUnit].end <= word.end) {
        if (m_textUnits[word.endUnit++].isWord) return false;
    }
    if (word.endUnit == word.firstUnit || m_textUnits[word.firstUnit].start != word.start) {
        return false;
    }
    return m_textUnits[word.firstUnit].end != word.end;
}

// The longest word that begins at a unit and ends before `endUnit`, or null.
const Tokens::Word* Tokens::longestAt(std::size_t unit, std::size_t endUnit) const {
    const Word* longest = nullptr;
    for (std::size_t i = m_firstPlaced[unit]; i < m_firstPlaced[unit + 1]; ++i) {
        if (m_placed[i].endUnit <= endUnit) longest = &m_placed[i];
    }
    return longest;
}

void Tokens::addUnit(std::size_t unit) {
    const Unit& added = m_textUnits[unit];
    m_tokens.push_back({added.token, added.start, added.end, false});
}

void Tokens::addWord(const Word& word, bool samePosition) {
    m_tokens.push_back(
        {m_text.substr(word.start, word.end - word.start), word.start, word.end, samePosition});
}

// Each unit with the words that begin there.
void Tokens::addOverlapping() {
    for (std::size_t unit = 0; unit < m_textUnits.size(); ++unit) {
        addUnit(unit);
        for (std::size_t i = m_firstPlaced[unit]; i < m_firstPlaced[unit + 1]; ++i) {
            addWord(m_placed[i], true);
        }
    }
}

// Words one after the other, and the units between them.
void Tokens::addPieces() {
    for (std::size_t unit = 0; unit < m_textUnits.size();) {
        const Word* const word = longestAt(unit, m_textUnits.size());
        if (word == nullptr) {
            addUnit(unit++);
        } else {
            addWord(*word, false);
            unit = word->endUnit;
        }
    }
}

// The same, but every unit keeps its position. A unit under a word is represented by the longest
// word that begins there, which is rarer than the unit.
void Tokens::addWithCovered() {
    for (std::size_t unit = 0; unit < m_textUnits.size();) {
        const Word* const piece = longestAt(unit, m_textUnits.size());
        if (piece == nullptr) {
            addUnit(unit++);
            continue;
        }
        for (; unit < piece->endUnit; ++unit) {
            const Word* const word = longestAt(unit, piece->endUnit);
            word == nullptr ? addUnit(unit) : addWord(*word, false);
        }
    }
}

}  // namespace dictionary_sqlite
