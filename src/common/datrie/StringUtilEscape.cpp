// Cleaning of GBK and ASCII bytes.

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <string_view>

#include "StringUtil.h"

namespace Dictionary {

namespace {

constexpr int kBufferBytes = 4096;
constexpr int kLastStepStart = kBufferBytes - 2;  // no step begins at a later output index
constexpr int kLongestReference = 8;              // also the most that one step writes
constexpr int kFirstDigit = 2;                    // its offset in a reference
constexpr int kFewestDigits = 3;
constexpr int kLastStepEnd = kLastStepStart + kLongestReference;

// One more byte holds the terminating zero.
unsigned char EscapeString[kLastStepEnd + 1];

constexpr std::string_view kBlank = " ";
constexpr int kDecimal = 10;
constexpr unsigned char kHighBit = 0x80;

// What one step reads from the input, and what it writes.
struct Step {
    int consumed;
    std::string_view output;
    bool isReplacedByte;
};

struct CodePoints {
    long first;
    long last;
    std::string_view output;
};

constexpr CodePoints kReplacements[] = {
    {12289, 12289, ","},  {65292, 65292, ","},  // ideographic and fullwidth comma
    {55296, 57343, " "},                        // surrogates
    {65534, 65535, " "},                        // non-characters
    {12290, 12290, "."},  {65294, 65294, "."},  // ideographic and fullwidth full stop
    {65306, 65306, ":"},                        // fullwidth colon
    {65288, 65288, "("},                        // fullwidth left parenthesis
    {65289, 65289, ")"},                        // fullwidth right parenthesis
    {8216, 8217, "'"},    {8242, 8242, "'"},    // single quotation marks, prime
    {8805, 8805, ">="},                         // greater-than or equal to
    {8804, 8804, "<="},                         // less-than or equal to
    {8220, 8221, "\""},   {8243, 8243, "\""},   // double quotation marks, double prime
    {12318, 12319, "\""},                       // double prime quotation marks
    {65374, 65374, "~"},                        // fullwidth tilde
    {8211, 8211, "-"},    {65293, 65293, "-"},  // en dash, fullwidth hyphen-minus
};

bool isWithin(unsigned char byte, unsigned char first, unsigned char last) {
    return first <= byte && byte <= last;
}

Step copy(const unsigned char* text, int count) {
    const char* bytes = reinterpret_cast<const char*>(text);
    return {count, std::string_view(bytes, static_cast<std::size_t>(count)), false};
}

bool isCopiedControl(unsigned char byte) {
    return byte == 3 || byte == 4 || byte == '\r' || byte == '\n';
}

bool isPair(const unsigned char* text) {
    return isWithin(text[0], 0x81, 0xFD) && isWithin(text[1], 0x40, 0xFE) && text[1] != 0x7F;
}

// The length of the numeric character reference that `text` begins with, 0 if there is none.
int referenceLength(const unsigned char* text, int left) {
    // Kept: even a shorter reference needs as many bytes of input as the longest one.
    if (left < kLongestReference || text[0] != '&' || text[1] != '#') return 0;
    int end = kFirstDigit;
    while (end < kLongestReference - 1 && isWithin(text[end], '0', '9')) ++end;
    return end >= kFirstDigit + kFewestDigits && text[end] == ';' ? end + 1 : 0;
}

Step replaceReference(const unsigned char* text, int length) {
    const char* digits = reinterpret_cast<const char*>(text + kFirstDigit);
    const long codePoint = std::strtol(digits, nullptr, kDecimal);
    for (const CodePoints& row : kReplacements) {
        if (row.first <= codePoint && codePoint <= row.last) return {length, row.output, false};
    }
    return copy(text, length);
}

// `left` is the number of input bytes at `text`, at least 1.
Step nextStep(const unsigned char* text, int left) {
    if (isCopiedControl(*text)) return copy(text, 1);
    // Kept: the second byte is looked at and used even when it is not counted in `left`.
    if (isPair(text)) return copy(text, 2);
    if (const int length = referenceLength(text, left)) return replaceReference(text, length);
    if (*text == '\t' || isWithin(*text, ' ', '~')) return copy(text, 1);
    return {1, kBlank, true};
}

bool isKeptByClass(unsigned char byte) {
    return std::isgraph(byte) != 0 || std::iscntrl(byte) != 0 || std::isblank(byte) != 0;
}

}  // namespace

unsigned char* Escape(const unsigned char* text, int length, int* replacedCount, int* consumed) {
    int in = 0;
    int out = 0;
    while (in < length && out <= kLastStepStart) {
        const Step step = nextStep(text + in, length - in);
        std::copy(step.output.begin(), step.output.end(), EscapeString + out);
        in += step.consumed;
        out += static_cast<int>(step.output.size());
        if (step.isReplacedByte) ++*replacedCount;
    }
    EscapeString[out] = '\0';
    *consumed = in;
    return EscapeString;
}

int SimpleEscape(std::string& text) {
    ReplaceChar(text, '\x01', ' ');
    ReplaceChar(text, '\x02', ' ');
    std::size_t next = 0;
    while (next < text.size()) {
        const auto byte = static_cast<unsigned char>(text[next]);
        if ((byte & kHighBit) != 0) {
            next += 2;
            continue;
        }
        if (!isKeptByClass(byte)) text[next] = ' ';
        ++next;
    }
    if (next > text.size()) text.back() = ' ';
    return static_cast<int>(text.size());
}

}  // namespace Dictionary
