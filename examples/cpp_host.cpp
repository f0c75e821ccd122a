// A host in C++: builds an image, opens it and shows for every line of a text how it is segmented
// into words, and every key that occurs in it.

#include <algorithm>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <string>
#include <string_view>

#include "Dictionary.hpp"

namespace {

void printWords(const dictionary::Image& image, const std::string& line) {
    std::cout << "\n" << line << "\n";
    for (const auto& word : image.find(line, dictionary::FindMode::segment)) {
        std::cout << "[" << line.substr(word.start, word.length) << "]";
    }
    std::cout << "\n";
}

// Blanks that pad a word to a column. East Asian characters take two columns.
std::string padding(std::string_view word) {
    constexpr std::size_t kColumn = 18;
    std::size_t width = 0;
    for (const char c : word) {
        const auto byte = static_cast<unsigned char>(c);
        const bool continuation = (byte & 0xC0) == 0x80;
        if (!continuation) width += byte >= 0xE3 ? 2 : 1;
    }
    return std::string(kColumn - std::min(width, kColumn - 1), ' ');
}

// The fields of a data text; ";" separates the records of a repeated key.
std::string readable(std::string_view data) {
    std::string text;
    for (const dictionary::Field& field : dictionary::fieldsOf(data)) {
        if (!text.empty()) text += field.beginsRecord ? "; " : "  ";
        text += field.text;
    }
    return text;
}

// `offset` is where the line begins in its text.
void printKeys(const dictionary::Image& image, const std::string& line, std::size_t offset) {
    image.visit(line, {}, [&](const dictionary::Match& match) {
        const std::string word = line.substr(match.start, match.length);
        std::cout << std::setw(8) << offset + match.start << "  " << word << padding(word)
                  << readable(match.data) << "\n";
    });
}

void show(const std::string& source, const std::string& text, const std::string& imageName) {
    dictionary::buildFile(source, imageName);
    const auto image = dictionary::Image::open(imageName);
    std::ifstream lines(text);
    if (!lines) throw std::runtime_error("cannot read " + text);
    std::size_t offset = 0;
    for (std::string line; std::getline(lines, line); offset += line.size() + 1) {
        printWords(image, line);
        printKeys(image, line, offset);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3 && argc != 4) {
        std::cerr << "usage: " << argv[0] << " SOURCE TEXT [IMAGE]\n";
        return 2;
    }
    try {
        show(argv[1], argv[2], argc == 4 ? argv[3] : "dictionary.bin");
    } catch (const dictionary::BuildError& error) {
        for (const dictionary::Error& problem : error.problems()) {
            std::cerr << problem.what() << "\n";
        }
        return 1;
    } catch (const std::exception& error) {
        std::cerr << argv[0] << ": " << error.what() << "\n";
        return 1;
    }
    return 0;
}
