// Compares texts in arrays with the decoder, character by character, for every kind of machine.

#include "EncodedText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <vector>

#include "BoundaryText.h"
#include "EachKernel.h"

namespace {

using Dictionary::EncodedText;

// The code, the first byte and the last byte of each character.
using Characters = std::vector<std::tuple<std::int32_t, std::int32_t, std::int32_t>>;

Characters expectedOf(const char* text, std::size_t size, EncodedText::Illegal illegal) {
    Characters characters;
    const auto add = [&](std::int32_t code, std::size_t start, std::size_t length) {
        characters.emplace_back(code, start, start + length - 1);
    };
    if (illegal == EncodedText::kStopAtIllegal) {
        Dictionary::decodeUtf8(text, strnlen(text, size), add);
        return characters;
    }
    const auto addLabels = [&](std::int32_t code, std::size_t start, std::size_t length) {
        if (code < Dictionary::kBmpEnd) {
            return add(code == 0 ? EncodedText::kNoCharacter : code, start, length);
        }
        add(Dictionary::highSurrogateOf(code), start, length);
        add(Dictionary::lowSurrogateOf(code), start + length, 0);
    };
    Dictionary::decodeAllUtf8(text, size, 0, addLabels);
    return characters;
}

void check(const std::string& text) {
    const char* const placed = placeAtPageEnd(text);
    for (const auto illegal : {EncodedText::kStopAtIllegal, EncodedText::kPassOver}) {
        const Characters expected = expectedOf(placed, text.size(), illegal);
        forEachKernel([&] {
            const EncodedText encoded(placed, text.size(), illegal);
            Characters characters;
            for (std::size_t place = 0; place < encoded.size(); ++place) {
                const Dictionary::SPOS span = encoded.span(place, place + 1, 0);
                characters.emplace_back(encoded.codes()[place], span.start, span.end);
            }
            ASSERT_EQ(characters, expected) << testing::PrintToString(text);
            const std::int32_t* const end = encoded.codes() + encoded.size();
            ASSERT_EQ(std::count(end, end + EncodedText::kPadding, EncodedText::kEnd),
                      std::ptrdiff_t{EncodedText::kPadding});
        });
    }
}

TEST(EncodedText, HasEveryBoundaryTextAlsoAcrossBlocks) {
    forEachBoundaryText("", 3, check);
    const std::string words = "\u4E2Da\u00E9\U0001F600\uFF21b\u6587\u5B57cdef\u00DFghijklm";
    for (std::size_t before = 0; before <= words.size(); ++before) {
        const std::string prefix = words.substr(0, before);
        forEachBoundaryText(prefix, 2, check);
        forEachBoundaryText(prefix, 1,
                            [&](const std::string& text) { check(text + words + words); });
    }
}

}  // namespace
