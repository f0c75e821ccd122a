// Where characters of UTF-8 begin and end.

#ifndef DICTIONARY_SQLITE_CHARACTERS_H
#define DICTIONARY_SQLITE_CHARACTERS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace dictionary_sqlite {

inline bool beginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0u) != 0x80u;
}

// Where the character at `place` ends. `place` must be before the end of the text.
inline std::size_t endOfCharacter(std::string_view text, std::size_t place) {
    do {
        ++place;
    } while (place < text.size() && !beginsCharacter(text[place]));
    return place;
}

inline std::int64_t charactersIn(std::string_view text) {
    return std::count_if(text.begin(), text.end(), beginsCharacter);
}

}  // namespace dictionary_sqlite

#endif
