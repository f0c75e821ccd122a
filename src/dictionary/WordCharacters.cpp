// The functions of Dictionary.h that classify characters.

#include <cstdint>

#include "Dictionary.h"
#include "Utf8Decoder.h"
#include "WordBoundary.h"

using namespace Dictionary;

bool dictionaryIsWordCharacter(DictionaryText text) {
    if (text.bytes == nullptr || text.size == 0) return false;
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.bytes);
    if (bytes[0] < 0x80) return wordClassOf(bytes[0]) != WordClass::kNone;
    const Utf8Character character = decodeMultiByte(bytes, text.size);
    return character.length != 0 && wordClassOf(character.code) != WordClass::kNone;
}
