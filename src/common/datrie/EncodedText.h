// Helper, not installed: a text as codes with their byte positions, for lookups that walk from many
// characters.

#ifndef DICTIONARY_ENCODED_TEXT_H
#define DICTIONARY_ENCODED_TEXT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

#include "UTF8Coder.h"
#include "Utf8Blocks.h"
#include "Utf8Decoder.h"

namespace Dictionary {

// The table of a coder's virtual functions, to which its first word points.
inline const void* functionsOf(const ICoderInterface& coder) {
    const void* functions;
    std::memcpy(&functions, static_cast<const void*>(&coder), sizeof functions);
    return functions;
}

// Whether `coder` encodes as the decoder does. This is known of the UTF-8 coder itself, but not of
// classes derived from it. Hosts may be compiled without type information, so typeid cannot be
// used.
inline bool isPlainUtf8(const ICoderInterface& coder) {
    const CUTF8Coder own{};
    return functionsOf(coder) == functionsOf(own);
}

// Leaves the characters of a text as they are.
struct SameCode {
    std::int32_t operator()(std::int32_t code) const { return code; }
};

// Characters are numbered from 0 in walking order, which is text order, or from the last character
// to the first when reversed. Short texts need no memory from the heap.
class EncodedText {
public:
    // Encodes the first `length` bytes of `text` as ICoderInterface::encodeString counts them.
    EncodedText(ICoderInterface& coder, const char* text, int length, bool reverse);

    // Encodes the `size` bytes at `text`, which need not be legal UTF-8.
    enum Illegal {
        kStopAtIllegal,  // as the UTF-8 coder does, up to a NUL or an illegal byte
        // Encodes all bytes. A NUL and each illegal byte become kNoCharacter, and a character above
        // U+FFFF becomes its two surrogates. The first one has the character's bytes and the second
        // one has none, so a key that ends with both ends where the character does.
        kPassOver
    };
    EncodedText(const char* text, std::size_t size, Illegal illegal);

    // The same as kPassOver, but the code of each legal character is mapped by `map`, which keeps
    // the number of its surrogates.
    template <class Map>
    EncodedText(const char* text, std::size_t size, Map map) {
        encodeLabels(text, size, map);
    }

    EncodedText(const EncodedText&) = delete;
    EncodedText& operator=(const EncodedText&) = delete;

    std::size_t size() const { return m_size; }

    // The codes, followed by kPadding times kEnd. kEnd is below every alphabet and leads nowhere.
    // Only in a damaged image may it lead to the header, and then the second kEnd leads nowhere.
    // The others are for walks that read many codes at a time.
    const std::int32_t* codes() const { return m_codes; }
    static constexpr std::size_t kPadding = 72;
    static constexpr std::int32_t kEnd = std::numeric_limits<std::int32_t>::min();
    static constexpr std::int32_t kNoCharacter = kEnd;

    // Whether the characters span `text`, which is the text that was encoded, from its first byte
    // to its last.
    bool spans(const char* text) const {
        return m_size > 0 && m_starts[0] == 0 &&
               static_cast<std::size_t>(m_ends[m_size - 1]) == std::strlen(text);
    }

    bool hasPairs() const { return m_hasPairs; }

    // Whether `place` is between the surrogates of a character, where no key begins.
    bool isInsidePair(std::size_t place) const {
        return m_hasPairs && isLowSurrogate(m_codes[place]);
    }

    // Returns the code of the character at `place`, and moves `place` after it.
    std::int32_t next(std::size_t& place) const { return m_codes[place++]; }

    // The character that begins at `place`, which must not be the end.
    std::int32_t characterAt(std::size_t place) const {
        const std::int32_t code = m_codes[place];
        return isHighSurrogate(code) ? codeOfPair(code, m_codes[place + 1]) : code;
    }

    // Returns the character that ends at `place`, and moves `place` to where it begins. `place`
    // must not be 0.
    std::int32_t previous(std::size_t& place) const {
        const std::int32_t code = m_codes[--place];
        return isLowSurrogate(code) ? codeOfPair(m_codes[--place], code) : code;
    }

    // The bytes of the characters `from` to `end` - 1. A reversed character begins at its last byte
    // and ends at its first, so a reversed span runs from its end to its start.
    SPOS span(std::size_t from, std::size_t end, std::int32_t feature) const {
        return {m_starts[from], m_ends[end - 1] - 1, feature};
    }

private:
    static constexpr std::size_t kInlineCharacters = 128;

    void encodeLegal(const char* text, std::size_t size);
    template <class Map>
    void encodeLabels(const char* text, std::size_t size, Map map);
    template <class Map, class Other>
    void encodeUtf8(const char* text, std::size_t size, Map map, Other other);
    void encodeBy(ICoderInterface& coder, const char* text, int length, bool reverse);
    std::int32_t* roomFor(std::size_t integers);

    bool m_hasPairs = false;
    std::size_t m_size = 0;
    std::int32_t* m_codes = nullptr;
    std::int32_t* m_starts = nullptr;
    std::int32_t* m_ends = nullptr;  // exclusive
    std::unique_ptr<std::int32_t[]> m_heap;
    std::int32_t m_inline[3 * kInlineCharacters + kPadding];
};

// Encodes all of the text. The code of each legal character is mapped by `map`.
template <class Map>
void EncodedText::encodeLabels(const char* text, std::size_t size, Map map) {
    const auto label = [map](std::int32_t code) { return code == 0 ? kNoCharacter : map(code); };
    encodeUtf8(text, size, label, [&](const Utf8Character& character, auto append) {
        if (character.length == 0) {
            append(kNoCharacter, 1);
        } else {
            m_hasPairs = true;
            const std::int32_t code = map(character.code);
            append(highSurrogateOf(code), character.length);
            append(lowSurrogateOf(code), 0);
        }
        return true;
    });
}

// Encodes the text. Codes below kBmpEnd are mapped by `map`. At every other place, calls
// `other(character, append)` with what decodeMultiByte finds there; `other` calls
// `append(code, bytes)` and returns whether to go on with the text.
template <class Map, class Other>
void EncodedText::encodeUtf8(const char* text, std::size_t size, Map map, Other other) {
    m_codes = roomFor(2 * size + kPadding + kUtf8BlockOverrun + 1);
    // Each character begins where the one before it ends.
    m_starts = m_codes + size + kPadding;
    m_ends = m_starts + 1;
    m_starts[0] = 0;
    Utf8Progress done;
    const auto append = [&](std::int32_t code, std::size_t bytes) {
        m_codes[done.characters] = code;
        done.bytes += bytes;
        m_ends[done.characters++] = static_cast<std::int32_t>(done.bytes);
    };
    const DecodeUtf8Blocks decodeBlocks = utf8Blocks();
    for (bool goesOn = true; goesOn && done.bytes < size;) {
        const std::size_t first = done.characters;
        decodeBlocks(text, size, done, m_codes, m_ends);
        std::transform(m_codes + first, m_codes + done.characters, m_codes + first, map);
        if (done.bytes == size) break;
        const auto* const left = reinterpret_cast<const std::uint8_t*>(text) + done.bytes;
        goesOn = other(decodeMultiByte(left, size - done.bytes), append);
    }
    m_size = done.characters;
    std::fill_n(m_codes + m_size, kPadding, kEnd);
}

}  // namespace Dictionary

#endif
