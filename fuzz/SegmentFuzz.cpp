// Compares segmentation by weight with the slow way to do it. An input is lines of a cost and a
// key; the last one is the text. There are few letters, so that keys overlap.

#include "Dictionary.h"
#include "Fuzz.h"
#include "SegmentModel.h"

namespace {

constexpr std::size_t kMostKeys = 20;
constexpr std::size_t kMostLetters = 12;
constexpr std::size_t kMostText = 400;

// Bytes below the number of letters stand for letters; the others stand for themselves.
std::string textOf(const std::string& bytes) {
    std::string text;
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        text += number < kAlphabet.size() ? kAlphabet[number] : std::string(1, byte);
    }
    return text;
}

std::string keyOf(const std::string& bytes) {
    std::string key;
    for (const char byte : bytes.substr(0, kMostLetters)) {
        key += kAlphabet[static_cast<unsigned char>(byte) % kAlphabet.size()];
    }
    return key;
}

std::string piecesOf(const DictionaryHandle* handle, const DictionarySegmenter* segmenter,
                     const std::string& text) {
    DictionaryFindOptions options = {};
    options.size = sizeof options;
    options.mode = DICTIONARY_FIND_WEIGHTED;
    options.segmenter = segmenter;
    options.unknownPieces = true;
    DictionaryMatches found = {};
    const int code =
        dictionaryFindMatches(handle, &options, {text.data(), text.size()}, &found, nullptr);
    require(code == DICTIONARY_OK, "every text is segmented");
    std::string pieces;
    for (std::size_t i = 0; i < found.count; ++i) {
        const DictionaryMatch& piece = found.items[i];
        const std::string bytes = text.substr(piece.start, piece.length);
        pieces += piece.data.bytes == nullptr ? bytes + '/' : '[' + bytes + ']';
    }
    dictionaryFreeMatches(&found);
    return pieces;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Words costs;
    std::string line;
    while (!input.isEmpty()) {
        line = input.textBefore('\n');
        const std::string key = line.empty() ? "" : keyOf(line.substr(1));
        if (input.isEmpty() || key.empty() || costs.size() == kMostKeys) continue;
        costs[key] = std::to_string(static_cast<signed char>(line[0]));
    }
    const std::string text = textOf(line.substr(0, kMostText));
    const Handle handle = imageOf(costs);
    const DictionarySegmenterOptions options = {sizeof options, DICTIONARY_WEIGHTS_COSTS, 1,
                                                kUnknownCost};
    DictionarySegmenter* const segmenter = dictionaryMakeSegmenter(handle.get(), &options, nullptr);
    require(segmenter != nullptr, "every key has a cost");
    require(piecesOf(handle.get(), segmenter, text) ==
                cheapestPieces(costs, charactersOf(text), kMostLetters),
            "the cheapest segmentation is found");
    dictionaryFreeSegmenter(segmenter);
    return 0;
}
