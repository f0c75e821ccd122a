// Helper, not installed: a query's codes with their byte positions, as the lookups walk them.

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

// Whether the codes of `coder` are those of the decoder. That is known of the UTF-8 coder itself,
// but not of classes derived from it. Hosts may be compiled without type information, so that
// typeid must not be asked.
inline bool isPlainUtf8(const ICoderInterface& coder) {
    const CUTF8Coder own{};
    return functionsOf(coder) == functionsOf(own);
}

// Leaves the characters of a text as they are.
struct SameCode {
    std::int32_t operator()(std::int32_t code) const { return code; }
};

// Characters are numbered from 0 in walking order, which is text order, or from the last character
// to the first when reversed. Short texts take no memory from the heap.
class EncodedText {
public:
    // Encodes the first `length` bytes of `text` as ICoderInterface::encodeString counts them.
    EncodedText(ICoderInterface& coder, const char* text, int length, bool reverse);

    // Encodes the `size` bytes of UTF-8 at `text`, which may be any.
    enum Illegal {
        kStopAtIllegal,  // as the UTF-8 coder does, up to a NUL or an illegal byte
        // All of them: a NUL and each illegal byte are characters kNoCharacter, and a character
        // above U+FFFF is its two surrogates. The first of these has the character's bytes, the
        // second none, so that a key which ends with both ends where the character does.
        kPassOver
    };
    EncodedText(const char* text, std::size_t size, Illegal illegal);

    // The same as kPassOver, but each legal character is what `map` makes of its code, which has as
    // many surrogates.
    template <class Map>
    EncodedText(const char* text, std::size_t size, Map map) {
        encodeLabels(text, size, map);
    }

    EncodedText(const EncodedText&) = delete;
    EncodedText& operator=(const EncodedText&) = delete;

    std::size_t size() const { return m_size; }

    // The codes and, after the last one, kPadding times kEnd. It is below every alphabet and leads
    // nowhere; only in a damaged image it may lead to the header, and then the second leads
    // nowhere. The others are there for walks that read many codes at a time.
    const std::int32_t* codes() const { return m_codes; }
    static constexpr std::size_t kPadding = 72;
    static constexpr std::int32_t kEnd = std::numeric_limits<std::int32_t>::min();
    static constexpr std::int32_t kNoCharacter = kEnd;

    // Whether the first character begins with the first byte of `text`, which was encoded, and the
    // last one ends with its last.
    bool spans(const char* text) const {
        return m_size > 0 && m_starts[0] == 0 &&
               static_cast<std::size_t>(m_ends[m_size - 1]) == std::strlen(text);
    }

    bool hasPairs() const { return m_hasPairs; }

    // Whether `place` is between the surrogates of a character, where no key begins.
    bool isInsidePair(std::size_t place) const {
        return m_hasPairs && isLowSurrogate(m_codes[place]);
    }

    // The code of character `place`, which moves after it.
    std::int32_t next(std::size_t& place) const { return m_codes[place++]; }

    // The character that begins at `place`, which is not the end.
    std::int32_t characterAt(std::size_t place) const {
        const std::int32_t code = m_codes[place];
        return isHighSurrogate(code) ? codeOfPair(code, m_codes[place + 1]) : code;
    }

    // The character that ends at `place`, which moves to where it begins; not from 0.
    std::int32_t previous(std::size_t& place) const {
        const std::int32_t code = m_codes[--place];
        return isLowSurrogate(code) ? codeOfPair(m_codes[--place], code) : code;
    }

    // The bytes of the characters from `from` up to, but without, `end`. A reversed character
    // begins at its last byte and ends at its first, so that a reversed span runs from its end to
    // its start.
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

// Encodes all of the text, each legal character by what `map` makes of its code.
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

// Encodes the text, characters below kBmpEnd by what `map` makes of their codes. For each other
// place, calls `other(character, append)` with what decodeMultiByte finds there, which calls
// `append(code, bytes)` and returns whether the text goes on.
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
