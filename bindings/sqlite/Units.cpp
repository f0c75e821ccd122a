#include "Units.h"

#include <Dictionary.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "Characters.h"

namespace dictionary_sqlite {

namespace {

struct Character {
    std::size_t end;
    bool isWord;
};

// The character at `place` of a stretch that unicode61 took for a word. Such a stretch is legal
// UTF-8, except for what unicode61 passed over.
Character characterAt(std::string_view text, std::size_t place) {
    const std::size_t end = endOfCharacter(text, place);
    return {end, dictionaryIsWordCharacter({text.data() + place, end - place})};
}

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80u; });
}

}  // namespace

std::vector<Unit> Units::of(std::string_view text, int reason) {
    m_reason = reason;
    m_words.clear();
    m_units.clear();
    m_unicode61.tokenize(text, reason, 0, m_words);
    for (FoldedWord& word : m_words) {
        if (isAscii(text.substr(word.start, word.end - word.start))) {
            m_units.push_back({word.start, word.end, std::move(word.token), true});
        } else {
            split(text.substr(0, word.end), word);
        }
    }
    return std::move(m_units);
}

// Splits a word into its units. The word ends where `text` ends.
void Units::split(std::string_view text, const FoldedWord& word) {
    for (std::size_t place = word.start; place < text.size();) {
        const Character first = characterAt(text, place);
        std::size_t end = first.end;
        if (!first.isWord) {
            m_units.push_back({place, end, std::string(text.substr(place, end - place)), false});
            place = end;
            continue;
        }
        while (end < text.size()) {
            const Character next = characterAt(text, end);
            if (!next.isWord) break;
            end = next.end;
        }
        std::vector<FoldedWord> folded;
        m_unicode61.tokenize(text.substr(place, end - place), m_reason, place, folded);
        for (FoldedWord& part : folded) {
            m_units.push_back({part.start, part.end, std::move(part.token), true});
        }
        place = end;
    }
}

}  // namespace dictionary_sqlite
