// Splitting, trimming, replacing and changing case.

#include "StringUtil.h"

#include <cctype>
#include <cstddef>
#include <string>
#include <vector>

namespace Dictionary {

namespace {

std::string convertBytes(std::string text, const char* set, int (*convert)(int)) {
    for (std::size_t at = text.find_first_of(set); at != std::string::npos;
         at = text.find_first_of(set, at + 1)) {
        text[at] = static_cast<char>(convert(static_cast<unsigned char>(text[at])));
    }
    return text;
}

}  // namespace

int SplitStr(const std::string& text, char separator, std::vector<std::string>& pieces) {
    return SplitStr(text, std::string(1, separator), pieces);
}

int SplitStr(const std::string& text, char open, char close, std::vector<std::string>& pieces) {
    pieces.clear();
    std::size_t start = text.find(open);
    while (start != std::string::npos) {
        const std::size_t end = text.find(close, start + 1);
        if (end == std::string::npos) break;
        if (end > start + 1) pieces.push_back(text.substr(start + 1, end - start - 1));
        start = text.find(open, end + 1);
    }
    return static_cast<int>(pieces.size());
}

int SplitStr(const std::string& text, const std::string& separators,
             std::vector<std::string>& pieces) {
    pieces.clear();
    std::size_t start = text.find_first_not_of(separators);
    while (start != std::string::npos) {
        const std::size_t end = text.find_first_of(separators, start);
        pieces.push_back(text.substr(start, end - start));
        start = text.find_first_not_of(separators, end);
    }
    return static_cast<int>(pieces.size());
}

// Kept: splitting by a sequence of bytes does nothing.
int SplitStrByStr(const std::string&, const std::string&, std::vector<std::string>& pieces) {
    return static_cast<int>(pieces.size());
}

std::string trim(const std::string& text) {
    static const char whiteSpace[] = " \t\r\n";
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string::npos) return std::string();
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

int ReplaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return 0;
}

int ReplaceChar(std::string& text, char from, char to) {
    int replaced = 0;
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + 1)) {
        text[at] = to;
        ++replaced;
    }
    return replaced;
}

// Kept: second bytes of double-byte characters are changed like any other bytes.
std::string String2Upper(const std::string& text) {
    return convertBytes(text, "abcdefghijklmnopqrstuvwxyz", std::toupper);
}

std::string String2Lower(const std::string& text) {
    return convertBytes(text, "ABCDEFGHIJKLMNOPQRSTUVWXYZ", std::tolower);
}

unsigned long GBKSubStr(std::string& text, unsigned long maxLength) {
    constexpr unsigned char kHighBit = 0x80;
    const std::size_t limit = text.size() < maxLength ? text.size() : maxLength;
    std::size_t kept = 0;
    while (kept < limit) {
        const bool isPair = (static_cast<unsigned char>(text[kept]) & kHighBit) != 0;
        const std::size_t width = isPair ? 2 : 1;
        if (kept + width > limit) break;
        kept += width;
    }
    text.resize(kept);
    return kept;
}

}  // namespace Dictionary
