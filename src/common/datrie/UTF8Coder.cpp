#include "UTF8Coder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "UnicodeConversion.h"
#include "Utf8Decoder.h"

namespace Dictionary {

namespace {

const std::uint8_t* bytesOf(const char* text) {
    return reinterpret_cast<const std::uint8_t*>(text);
}

// Makes room for `count` more items. The capacity at least doubles, so that appending text after
// text stays cheap.
template <class Item>
void provideRoom(std::vector<Item>& items, std::size_t count) {
    if (items.capacity() - items.size() >= count) return;
    items.reserve(std::max(items.size() + count, 2 * items.capacity()));
}

// Gathers characters and appends them many at a time, which costs less than one by one.
class EncodedBlock {
public:
    EncodedBlock(std::vector<int>& codes, std::vector<SPOS>& positions)
        : m_toCodes(codes), m_toPositions(positions) {}

    void add(int code, SPOS position) {
        m_codes[m_count] = code;
        m_positions[m_count] = position;
        if (++m_count == kRoom) flush();
    }

    void flush() {
        m_toCodes.insert(m_toCodes.end(), m_codes, m_codes + m_count);
        m_toPositions.insert(m_toPositions.end(), m_positions, m_positions + m_count);
        m_count = 0;
    }

private:
    static constexpr std::size_t kRoom = 128;

    std::vector<int>& m_toCodes;
    std::vector<SPOS>& m_toPositions;
    std::size_t m_count = 0;
    int m_codes[kRoom];
    SPOS m_positions[kRoom];
};

}  // namespace

int CUTF8Coder::encodeString(const char* text, std::vector<int>& codes,
                             std::vector<SPOS>& positions, int length) {
    const std::size_t size = encodedSize(text, length);
    provideRoom(codes, size);
    provideRoom(positions, size);
    EncodedBlock block(codes, positions);
    int allInAlphabet = 1;
    decodeUtf8(text, size, [&](std::int32_t code, std::size_t start, std::uint32_t bytes) {
        if (code >= kBmpEnd) allInAlphabet = 0;
        const int first = static_cast<int>(start);
        block.add(code, {first, first + static_cast<int>(bytes) - 1, 0});
    });
    block.flush();
    return allInAlphabet;
}

int CUTF8Coder::decode(int code, char* buffer, int bufferLength) {
    const std::uint32_t source = static_cast<std::uint32_t>(code);
    const std::uint32_t* sourceCursor = &source;
    std::uint8_t* const target = reinterpret_cast<std::uint8_t*>(buffer);
    std::uint8_t* targetCursor = target;
    ConvertUTF32toUTF8(&sourceCursor, &source + 1, &targetCursor, target + bufferLength,
                       lenientConversion);
    return static_cast<int>(targetCursor - target);
}

bool CUTF8Coder::isInMyCode(const char* text) {
    const std::size_t size = std::strlen(text);
    if (size == 0) return false;
    // Kept: the end passed is the text's last byte, so a text of one character fails.
    return isLegalUTF8Sequence(bytesOf(text), bytesOf(text) + size - 1) != 0;
}

int CUTF8Coder::getNumOfSingleWord() {
    return kBmpEnd;
}

}  // namespace Dictionary
