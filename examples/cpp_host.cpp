// A host in C++: builds an image, reads it into memory and shows for every line of a text how it
// falls into words, and every key that occurs in it.

#include <algorithm>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "DATDictionarySample.h"
#include "DATReader.h"

namespace {

bool buildImage(const char* source, const char* image) {
    Dictionary::CDictionayApp app;
    return app.buildDic(source, "\t", "\n") == 1 && app.writeBinaryDic(image) == 1;
}

void printWords(Dictionary::CDATReader& reader, const std::string& line) {
    std::vector<Dictionary::SPOS> words;
    reader.maxMatch(line.c_str(), words);
    std::cout << "\n" << line << "\n";
    for (const auto& word : words) {
        const auto start = static_cast<std::size_t>(word.start);
        std::cout << "[" << line.substr(start, static_cast<std::size_t>(word.end) + 1 - start)
                  << "]";
    }
    std::cout << "\n";
}

// Blanks that fill a word up to a column. East Asian characters take two columns.
std::string padding(const std::string& word) {
    constexpr std::size_t kColumn = 18;
    std::size_t width = 0;
    for (const char c : word) {
        const auto byte = static_cast<unsigned char>(c);
        const bool continuation = (byte & 0xC0) == 0x80;
        if (!continuation) width += byte >= 0xE3 ? 2 : 1;
    }
    return std::string(kColumn - std::min(width, kColumn - 1), ' ');
}

// A data text without the tab that ends each of its fields; ";" sets apart those of a repeated key.
std::string readable(std::string data) {
    if (!data.empty()) data.pop_back();
    for (std::size_t tab; (tab = data.find('\t')) != std::string::npos;) {
        const bool lastField = data[tab + 1] == ';';
        data.replace(tab, lastField ? 2 : 1, lastField ? "; " : "  ");
    }
    return data;
}

// `offset` is where the line begins in its text.
void printKeys(Dictionary::CDATReader& reader, const std::string& line, std::size_t offset) {
    std::vector<std::vector<std::pair<int, std::string>>> keysByStart;
    reader.allMatch(line.c_str(), keysByStart, false, -1);
    for (std::size_t start = 0; start < keysByStart.size(); ++start) {
        for (const auto& [length, data] : keysByStart[start]) {
            const std::string word = line.substr(start, static_cast<std::size_t>(length));
            std::cout << std::setw(8) << offset + start << "  " << word << padding(word)
                      << readable(data) << "\n";
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 && argc != 4) {
        std::cerr << "usage: " << argv[0] << " SOURCE TEXT [IMAGE]\n";
        return 2;
    }
    const char* const image = argc == 4 ? argv[3] : "dictionary.bin";

    std::ifstream text(argv[2]);
    // buildDic ends the process when it cannot open the source.
    const bool sourceReadable = std::ifstream(argv[1]).is_open();
    if (!sourceReadable || !text) {
        std::cerr << argv[0] << ": cannot read " << (sourceReadable ? argv[2] : argv[1]) << "\n";
        return 1;
    }
    if (!buildImage(argv[1], image)) {
        std::cerr << argv[0] << ": cannot build " << image << " from " << argv[1] << "\n";
        return 1;
    }

    std::ifstream file(image, std::ios::binary);
    std::vector<char> bytes((std::istreambuf_iterator<char>(file)), {});
    Dictionary::CUTF8Coder coder;
    Dictionary::CDATReader reader(&coder, bytes.data(), false);

    std::size_t offset = 0;
    for (std::string line; std::getline(text, line); offset += line.size() + 1) {
        printWords(reader, line);
        printKeys(reader, line, offset);
    }
    return 0;
}
