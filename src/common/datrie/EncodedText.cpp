#include "EncodedText.h"

#include <cstring>
#include <vector>

namespace Dictionary {

EncodedText::EncodedText(ICoderInterface& coder, const char* text, int length, bool reverse) {
    if (!reverse && isPlainUtf8(coder)) {
        encodeLegal(text, encodedSize(text, length));
    } else {
        encodeBy(coder, text, length, reverse);
    }
}

EncodedText::EncodedText(const char* text, std::size_t size, Illegal illegal) {
    if (illegal == kStopAtIllegal) {
        encodeLegal(text, size == 0 ? 0 : strnlen(text, size));
    } else {
        encodeLabels(text, size, SameCode());
    }
}

// Encodes the legal characters at the beginning of the text.
void EncodedText::encodeLegal(const char* text, std::size_t size) {
    encodeUtf8(text, size, SameCode(), [](const Utf8Character& character, auto append) {
        if (character.length == 0) return false;
        append(character.code, character.length);
        return true;
    });
}

std::int32_t* EncodedText::roomFor(std::size_t integers) {
    if (integers <= sizeof m_inline / sizeof *m_inline) return m_inline;
    m_heap.reset(new std::int32_t[integers]);
    return m_heap.get();
}

void EncodedText::encodeBy(ICoderInterface& coder, const char* text, int length, bool reverse) {
    std::vector<int> codes;
    std::vector<SPOS> positions;
    coder.encodeString(text, codes, positions, length);
    m_size = codes.size();
    m_codes = roomFor(3 * m_size + kPadding);
    std::fill_n(m_codes + m_size, kPadding, kEnd);
    m_starts = m_codes + m_size + kPadding;
    m_ends = m_starts + m_size;
    for (std::size_t i = 0; i < m_size; ++i) {
        const std::size_t source = reverse ? m_size - 1 - i : i;
        const SPOS position = positions[source];
        m_codes[i] = codes[source];
        m_starts[i] = reverse ? position.end : position.start;
        m_ends[i] = (reverse ? position.start : position.end) + 1;
    }
}

}  // namespace Dictionary
