// Images with keys of all of Unicode, opened as the modern interface opens them.

#ifndef TESTS_LABEL_IMAGE_H
#define TESTS_LABEL_IMAGE_H

#include <map>
#include <memory>
#include <string>

#include "Dictionary.h"
#include "LookupModel.h"
#include "TemporaryFile.h"

using Words = std::map<std::string, std::string>;  // key to data without its last tab

// Codes as keys of the modern interface have them. A key behind '<' loses its first one.
class LabelCoder : public Dictionary::CUTF8Coder {
public:
    int encodeString(const char* text, std::vector<int>& codes,
                     std::vector<Dictionary::SPOS>& positions, int length) override {
        std::vector<int> characters;
        CUTF8Coder::encodeString(text, characters, positions, length);
        for (const int code : characters) {
            if (code >= 0x10000) codes.push_back(0xD800 + ((code - 0x10000) >> 10));
            codes.push_back(code < 0x10000 ? code : 0xDC00 + (code & 0x3FF));
        }
        if (text[0] == '<') codes.erase(codes.begin(), codes.begin() + 2);
        positions.resize(codes.size());
        return 1;
    }
};

using Handle = std::unique_ptr<DictionaryHandle, decltype(&dictionaryClose)>;

inline Handle imageOf(const Words& words) {
    std::map<std::string, std::string> pairs;
    for (const auto& [key, data] : words) pairs[key] = data + '\t';
    LabelCoder coder;
    std::unique_ptr<LookupImage> image;
    printedBy([&] { image = std::make_unique<LookupImage>(coder, pairs, false); });
    const std::string bytes = image->bytes();
    return {dictionaryOpenBytes({bytes.data(), bytes.size()}, DICTIONARY_OPEN_COPY, nullptr),
            dictionaryClose};
}

#endif
