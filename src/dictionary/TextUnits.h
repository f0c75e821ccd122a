// Helper, not installed: where keys are in a text, in the unit that the caller asks for.

#ifndef DICTIONARY_TEXT_UNITS_H
#define DICTIONARY_TEXT_UNITS_H

#include <cstddef>
#include <cstdint>

#include "Dictionary.h"
#include "EncodedText.h"
#include "ImageFormat.h"
#include "LabelText.h"
#include "Utf8Decoder.h"
#include "Utf8Text.h"

namespace Dictionary {

struct Stretch {
    std::size_t start;
    std::size_t length;
};

inline Stretch byteStretch(const EncodedText& text, std::size_t from, std::size_t end) {
    const SPOS span = text.span(from, end, kNoFeature);
    const auto start = static_cast<std::size_t>(span.start);
    return {start, static_cast<std::size_t>(span.end) + 1 - start};
}
// Places in the other texts are byte offsets, and no key begins or ends inside a character.
inline Stretch byteStretch(const LabelText&, std::size_t from, std::size_t end) {
    return {from, end - from};
}
inline Stretch byteStretch(const Utf8Text&, std::size_t from, std::size_t end) {
    return {from, end - from};
}

// Whether each place of a text is one unit after the one before it. Then nothing needs to be
// counted.
inline bool placesAreUnits(const EncodedText& text, int unit) {
    if (unit == DICTIONARY_UNIT_BYTE) return false;
    const std::int32_t* const codes = text.codes();
    // A character above U+FFFF is two labels in some texts, and one code in others.
    const auto isOne = [unit](std::int32_t code) {
        return unit == DICTIONARY_UNIT_UTF16 ? code < kBmpEnd : !isLowSurrogate(code);
    };
    bool areUnits = true;
    for (std::size_t i = 0; i < text.size(); ++i) areUnits &= isOne(codes[i]);
    return areUnits;
}
template <class Text>
bool placesAreUnits(const Text&, int) {
    return false;
}

// Measures stretches of a text, which must come in the order of their starts.
template <class Text>
class TextUnits {
public:
    TextUnits(const Text& text, int unit)
        : m_text(text), m_unit(unit), m_placesAreUnits(placesAreUnits(text, unit)) {}

    Stretch measure(std::size_t from, std::size_t end) {
        if (m_placesAreUnits) return {from, end - from};
        if (m_unit == DICTIONARY_UNIT_BYTE) return byteStretch(m_text, from, end);
        m_units += unitsBetween(m_passed, from);
        m_passed = from;
        return {m_units, unitsBetween(from, end)};
    }

private:
    std::size_t unitsBetween(std::size_t from, std::size_t end) const {
        std::size_t units = 0;
        for (std::size_t place = from; place < end;) units += unitsOf(m_text.next(place));
        return units;
    }

    std::size_t unitsOf(std::int32_t code) const {
        if (m_unit == DICTIONARY_UNIT_UTF16) return code < kBmpEnd ? 1 : 2;
        return isLowSurrogate(code) ? 0 : 1;
    }

    const Text& m_text;
    const int m_unit;
    const bool m_placesAreUnits;
    std::size_t m_passed = 0;  // places
    std::size_t m_units = 0;   // units of those places
};

}  // namespace Dictionary

#endif
