// Compares builds and lookups with the map and the literal trie. An input is lines of keys; the
// last one is the text to search. There are few letters, so that keys overlap.

#include "Fuzz.h"
#include "LetterCoder.h"
#include "LiteralTrie.h"
#include "LookupModel.h"

namespace {

constexpr std::size_t kMostKeys = 12;
constexpr std::size_t kMostLetters = 40;

using Pairs = std::vector<std::pair<std::string, std::string>>;

std::string lettersOf(const std::string& bytes) {
    std::string letters = bytes.substr(0, kMostLetters);
    for (char& letter : letters) {
        const auto byte = static_cast<unsigned char>(letter);
        letter = static_cast<char>('A' + byte % (byte < 128 ? 4 : 63));
    }
    return letters;
}

void requireLiteralCells(const Pairs& pairs, const std::string& image, bool reverse) {
    LiteralTrie literal(LetterCoder().getNumOfSingleWord());
    for (const auto& [key, feature] : pairs) {
        std::vector<int> codes(key.begin(), key.end());
        for (int& code : codes) code -= '@';
        if (reverse) std::reverse(codes.begin(), codes.end());
        literal.add(codes, feature);
    }
    literal.build();
    for (int i = 1; i < literal.cellCount(); ++i) {
        const LiteralTrie::Cell cell = literal.cell(i);
        const int words[] = {cell.base, cell.check == -2 ? 0 : cell.check, cell.feature};
        require(std::memcmp(&image[sizeof words * static_cast<std::size_t>(i)], words,
                            sizeof words) == 0,
                "cells are placed by the literal rules");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    muteOutput();
    Input input(data, size);
    const bool reverse = input.below(2) == 1;
    Pairs pairs;
    std::map<std::string, std::string> words;
    std::string text;
    while (!input.isEmpty() && pairs.size() < kMostKeys) {
        text = lettersOf(input.textBefore('\n'));
        if (input.isEmpty()) break;
        pairs.emplace_back(text, std::string(pairs.size() % 3, 'd'));
        if (!text.empty()) words[text] = pairs.back().second;
    }
    LetterCoder coder;
    LookupImage image(coder, pairs, reverse);
    const Answers expected = LookupModel(words, reverse).answers(text);
    require(image.answers(text) == expected, "lookups find what the map finds");
    requireLiteralCells(pairs, image.bytes(), reverse);
    return 0;
}
