// Helper, not installed: any bytes as the labels of keys, decoded while a walk reads them.

#ifndef DICTIONARY_LABEL_TEXT_H
#define DICTIONARY_LABEL_TEXT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "EncodedText.h"
#include "Folding.h"
#include "Utf8Decoder.h"

namespace Dictionary {

// The same labels that EncodedText makes with `Map`. Places are byte offsets. The place between the
// two labels of a character is the offset of the character's last byte. The bytes must outlive the
// object.
template <class Map>
class MappedText {
public:
    explicit MappedText(std::string_view text)
        : m_bytes(reinterpret_cast<const std::uint8_t*>(text.data())), m_size(text.size()) {}

    std::size_t size() const { return m_size; }

    bool isInsidePair(std::size_t place) const {
        return place < m_size && isContinuation(m_bytes[place]) && wideEndingAt(place).length != 0;
    }

    // The label at `place`; at the end, EncodedText::kEnd. Moves `place` after the label.
    std::int32_t next(std::size_t& place) const {
        if (place == m_size) return EncodedText::kEnd;
        if (m_bytes[place] < kMultiByteLead) return nextOfOneByte(place);
        const Utf8Character character = decodeMultiByte(m_bytes + place, m_size - place);
        place += character.length == 0 ? 1 : character.length;
        if (character.length == 0) return EncodedText::kNoCharacter;
        const std::int32_t code = Map()(character.code);
        if (code < kBmpEnd) return code;
        --place;
        return highSurrogateOf(code);
    }

    // The character that begins at `place`, which is not the end.
    std::int32_t characterAt(std::size_t place) const {
        const std::int32_t code = next(place);
        return isHighSurrogate(code) ? codeOfPair(code, next(place)) : code;
    }

    // The character that ends at `place`, which is not 0. Moves `place` to where it begins.
    std::int32_t previous(std::size_t& place) const {
        const std::size_t end = place;
        const std::uint8_t last = m_bytes[end - 1];
        if (last > 0 && last < 0x80) return Map()(m_bytes[--place]);
        const std::size_t limit = end - std::min(end, kLastByte + 1);
        do --place;
        while (place > limit && isContinuation(m_bytes[place]));
        const Utf8Character character =
            m_bytes[place] < kMultiByteLead ? kNone : decodeMultiByte(m_bytes + place, end - place);
        if (character.length == end - place) return Map()(character.code);
        place = end - 1;
        return EncodedText::kNoCharacter;
    }

private:
    static constexpr std::size_t kLastByte = 3;
    static constexpr std::uint8_t kMultiByteLead = 0xC0;
    static constexpr std::uint8_t kFourByteLead = 0xF0;
    static constexpr Utf8Character kNone = {0, 0};

    // For a byte that is ASCII, inside a character, or not part of any character.
    std::int32_t nextOfOneByte(std::size_t& place) const {
        const std::int32_t byte = m_bytes[place];
        const Utf8Character wide = isContinuation(m_bytes[place]) ? wideEndingAt(place) : kNone;
        ++place;
        if (wide.length != 0) return lowSurrogateOf(Map()(wide.code));
        return byte > 0 && byte < 0x80 ? Map()(byte) : EncodedText::kNoCharacter;
    }

    // The character above U+FFFF whose last byte is at `place`. Its length is 0 if there is none.
    Utf8Character wideEndingAt(std::size_t place) const {
        if (place < kLastByte || m_bytes[place - kLastByte] < kFourByteLead) return kNone;
        return decodeMultiByte(m_bytes + place - kLastByte, kLastByte + 1);
    }

    const std::uint8_t* m_bytes;
    std::size_t m_size;
};

using LabelText = MappedText<SameCode>;
using FoldedText = MappedText<FoldedCode>;

}  // namespace Dictionary

#endif
