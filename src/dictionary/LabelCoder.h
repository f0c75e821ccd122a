// Helper, not installed: the coder of keys that may have every Unicode character.

#ifndef DICTIONARY_LABEL_CODER_H
#define DICTIONARY_LABEL_CODER_H

#include <cstdint>
#include <vector>

#include "UTF8Coder.h"
#include "Utf8Decoder.h"

namespace Dictionary {

// A character above U+FFFF is two labels, its UTF-16 surrogates. Any other is one label, its code
// point. The positions of labels are not recorded.
class LabelCoder final : public CUTF8Coder {
public:
    int encodeString(const char* text, std::vector<int>& codes, std::vector<SPOS>&,
                     int length) override {
        decodeUtf8(text, encodedSize(text, length),
                   [&](std::int32_t code, std::size_t, std::uint32_t) {
                       if (code >= kBmpEnd) codes.push_back(highSurrogateOf(code));
                       codes.push_back(code < kBmpEnd ? code : lowSurrogateOf(code));
                   });
        return 1;
    }
};

}  // namespace Dictionary

#endif
