// Numbers and their decimal texts.

#include <cstdlib>
#include <sstream>
#include <string>

#include "StringUtil.h"

namespace Dictionary {

namespace {

constexpr int kDecimal = 10;

template <typename Number>
std::string toText(Number value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

}  // namespace

int Str2Int(std::string text) {
    return static_cast<int>(Str2Long(text));
}

long Str2Long(std::string text) {
    return std::strtol(text.c_str(), nullptr, kDecimal);
}

std::string Int2Str(int value) {
    return toText(value);
}

std::string Long2Str(long value) {
    return toText(value);
}

int IsDigitString(std::string text) {
    const bool isNumber =
        !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? 0 : -1;
}

}  // namespace Dictionary
