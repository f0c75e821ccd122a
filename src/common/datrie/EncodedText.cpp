#include "EncodedText.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace Dictionary {

namespace {

std::int32_t asItIs(std::int32_t code) {
    return code;
}

}  // namespace

EncodedText::EncodedText(ICoderInterface& coder, const char* text, int length, bool reverse) {
    if (!reverse && isPlainUtf8(coder)) {
        const std::size_t bytes = encodedSize(text, length);
        encodeUtf8(bytes, [&](auto emit) { decodeUtf8(text, bytes, emit); });
    } else {
        encodeBy(coder, text, length, reverse);
    }
}

EncodedText::EncodedText(const char* text, std::size_t size, Outsiders outsiders) {
    if (outsiders == kStopAtIllegal) {
        const std::size_t bytes = size == 0 ? 0 : strnlen(text, size);
        encodeUtf8(bytes, [&](auto emit) { decodeUtf8(text, bytes, emit); });
        return;
    }
    encodeLabels(text, size, asItIs);
}

// Encodes all of the text, each legal character by what `map` makes of its code.
template <class Map>
void EncodedText::encodeLabels(const char* text, std::size_t size, Map map) {
    encodeUtf8(size, [&](auto emit) {
        decodeAllUtf8(text, size, 0,
                      [&](std::int32_t found, std::size_t start, std::uint32_t length) {
                          const std::int32_t code = found == 0 ? kOutsider : map(found);
                          if (code < kBmpEnd) return emit(code, start, length);
                          m_hasPairs = true;
                          emit(highSurrogateOf(code), start, length);
                          emit(lowSurrogateOf(code), start, length);
                      });
    });
}

std::int32_t* EncodedText::roomFor(std::size_t integers) {
    if (integers <= sizeof m_inline / sizeof *m_inline) return m_inline;
    m_heap.reset(new std::int32_t[integers]);
    return m_heap.get();
}

template <class Decode>
void EncodedText::encodeUtf8(std::size_t bytes, Decode decode) {
    m_codes = roomFor(2 * bytes + kEnds + 1);
    // Each character begins where the one before it ends.
    m_starts = m_codes + bytes + kEnds;
    m_ends = m_starts + 1;
    m_starts[0] = 0;
    std::int32_t* code = m_codes;
    std::int32_t* end = m_ends;
    decode([&](std::int32_t value, std::size_t start, std::uint32_t size) {
        *code++ = value;
        *end++ = static_cast<std::int32_t>(start + size);
    });
    m_size = static_cast<std::size_t>(code - m_codes);
    std::fill_n(code, kEnds, kEnd);
}

void EncodedText::encodeBy(ICoderInterface& coder, const char* text, int length, bool reverse) {
    std::vector<int> codes;
    std::vector<SPOS> positions;
    coder.encodeString(text, codes, positions, length);
    m_size = codes.size();
    m_codes = roomFor(3 * m_size + kEnds);
    std::fill_n(m_codes + m_size, kEnds, kEnd);
    m_starts = m_codes + m_size + kEnds;
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
