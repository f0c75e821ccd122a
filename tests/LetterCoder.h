// A coder over 64 letters, '@' to DEL: images stay below two kilobytes, so that very many
// dictionaries can be built.

#ifndef TESTS_LETTER_CODER_H
#define TESTS_LETTER_CODER_H

#include <cstring>

#include "UTF8Coder.h"

class LetterCoder : public Dictionary::ICoderInterface {
public:
    int encodeString(const char* text, std::vector<int>& codes,
                     std::vector<Dictionary::SPOS>& positions, int length) override {
        int size = static_cast<int>(std::strlen(text));
        if (length > 0 && length < size) size = length;
        for (int i = 0; i < size; ++i) {
            if (text[i] < kFirst) return 0;
            codes.push_back(text[i] - kFirst);
            positions.push_back({i, i, 0});
        }
        return 1;
    }
    int decode(int code, char* buffer, int) override {
        buffer[0] = static_cast<char>(code + kFirst);
        return 1;
    }
    bool isInMyCode(const char* text) override { return text[0] >= kFirst; }
    int getNumOfSingleWord() override { return 64; }

private:
    static constexpr int kFirst = '@';
};

#endif
