// Matching with wildcards.

#include <cstddef>
#include <string_view>
#include <vector>

#include "StringUtil.h"

namespace Dictionary {

namespace {

// For every length of a prefix of the pattern, whether that prefix matches the text read so far.
using Prefixes = std::vector<char>;

Prefixes matchingNothing(std::string_view pattern) {
    Prefixes matching(pattern.size() + 1, false);
    matching[0] = true;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const bool mayBeNothing = pattern[i] == '*' || pattern[i] == '?';
        matching[i + 1] = static_cast<char>(mayBeNothing && matching[i]);
    }
    return matching;
}

// Reads one more byte of the text. Returns whether any prefix still matches.
bool advance(std::string_view pattern, char byte, Prefixes& matching) {
    bool shorterBefore = matching[0];  // the prefix one shorter, before this byte
    bool shorterNow = false;           // and with it
    bool any = false;
    matching[0] = false;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const bool before = matching[i + 1];
        bool now = shorterBefore && pattern[i] == byte;
        if (pattern[i] == '*') now = shorterNow || before;
        // Kept: a question mark matches one byte or none.
        if (pattern[i] == '?') now = shorterNow || shorterBefore;
        matching[i + 1] = static_cast<char>(now);
        any = any || now;
        shorterBefore = before;
        shorterNow = now;
    }
    return any;
}

}  // namespace

int wildcard(const char* pattern, const char* text) {
    const std::string_view wanted(pattern);
    Prefixes matching = matchingNothing(wanted);
    for (; *text != '\0'; ++text) {
        if (!advance(wanted, *text, matching)) return 0;
    }
    return matching.back();
}

}  // namespace Dictionary
