// Helper, not installed: UTF-8 that is decoded while a walk reads it.

#ifndef DICTIONARY_UTF8_TEXT_H
#define DICTIONARY_UTF8_TEXT_H

#include <cstddef>
#include <cstdint>

#include "EncodedText.h"
#include "Utf8Decoder.h"

namespace Dictionary {

// A text for lookups that read few of its characters, or most of them only once. Places are byte
// offsets. As with the UTF-8 coder, the text ends at the first sequence that is illegal or cut off.
// It is a view of the bytes, which must outlive it.
class Utf8Text {
public:
    Utf8Text(const char* text, std::size_t size)
        : m_bytes(reinterpret_cast<const std::uint8_t*>(text)), m_size(size) {}

    std::size_t size() const { return m_size; }

    // Always true: a text that is not legal up to its end is given a code that leads nowhere.
    bool spans(const char*) const { return true; }

    // Returns the code at byte `place`, and moves `place` after it. At the end, returns
    // EncodedText::kEnd.
    std::int32_t next(std::size_t& place) const {
        if (place == m_size) return EncodedText::kEnd;
        if (m_bytes[place] < 0x80) return m_bytes[place++];
        const Utf8Character character = decodeMultiByte(m_bytes + place, m_size - place);
        if (character.length == 0) {
            place = m_size;
            return EncodedText::kEnd;
        }
        place += character.length;
        return character.code;
    }

    // No place is between two labels of one character.
    bool isInsidePair(std::size_t) const { return false; }

    // The bytes `from` to `end` - 1.
    SPOS span(std::size_t from, std::size_t end, std::int32_t feature) const {
        return {static_cast<std::int32_t>(from), static_cast<std::int32_t>(end) - 1, feature};
    }

protected:
    const std::uint8_t* m_bytes;
    std::size_t m_size;
};

// The same, but a character above U+FFFF is its two surrogates, and the place between them is that
// of the character's last byte. The code of each character is mapped by `Map`.
template <class Map>
class MappedLabelText : public Utf8Text {
public:
    using Utf8Text::Utf8Text;

    bool isInsidePair(std::size_t place) const {
        return place >= kLastByte && place < m_size && isContinuation(m_bytes[place]) &&
               m_bytes[place - kLastByte] >= kFourByteLead;
    }

    std::int32_t next(std::size_t& place) const {
        if (isInsidePair(place)) {
            place -= kLastByte;
            return lowSurrogateOf(Map()(Utf8Text::next(place)));
        }
        const std::int32_t code = Map()(Utf8Text::next(place));
        if (code < kBmpEnd) return code;
        --place;
        return highSurrogateOf(code);
    }

private:
    static constexpr std::size_t kLastByte = 3;
    static constexpr std::uint8_t kFourByteLead = 0xF0;
};

using Utf8LabelText = MappedLabelText<SameCode>;

// Calls `use(text)` with the first `length` bytes of `text`, as ICoderInterface::encodeString
// counts them, in the form that is best for a lookup that does not walk from every character.
template <class Use>
void readOnce(ICoderInterface& coder, const char* text, int length, bool reverse, const Use& use) {
    if (!reverse && isPlainUtf8(coder)) return use(Utf8Text(text, encodedSize(text, length)));
    use(EncodedText(coder, text, length, reverse));
}

}  // namespace Dictionary

#endif
