// Separators written in escape notation.

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <sstream>
#include <string>
#include <string_view>

#include "StringUtil.h"

namespace Dictionary {

namespace {

// An escape is its prefix, then that many decimal digits.
struct EscapeForm {
    std::string_view prefix;
    std::size_t digits;
};

constexpr EscapeForm kEscapeForms[] = {{"\\", 3}, {"\\u", 4}};

int str2int(const std::string& text) {
    int value = 0;
    std::istringstream(text) >> value;
    return value;
}

bool isDigit(char byte) {
    return std::isdigit(static_cast<unsigned char>(byte)) != 0;
}

bool beginsWith(std::string_view text, const EscapeForm& form) {
    if (text.substr(0, form.prefix.size()) != form.prefix) return false;
    const std::string_view digits = text.substr(form.prefix.size(), form.digits);
    return digits.size() == form.digits && std::all_of(digits.begin(), digits.end(), isDigit);
}

const EscapeForm* formAtStart(std::string_view text) {
    for (const EscapeForm& form : kEscapeForms) {
        if (beginsWith(text, form)) return &form;
    }
    return nullptr;
}

}  // namespace

std::string getEscapeSeparator(std::string separator) {
    std::string bytes;
    for (std::string_view rest = separator; !rest.empty();) {
        const EscapeForm* form = formAtStart(rest);
        if (form == nullptr) {
            bytes += rest.front();
            rest.remove_prefix(1);
            continue;
        }
        rest.remove_prefix(form->prefix.size());
        // Kept: the digits are decimal in both forms, and only the low eight bits count.
        bytes += static_cast<char>(str2int(std::string(rest.substr(0, form->digits))));
        rest.remove_prefix(form->digits);
    }
    return bytes;
}

}  // namespace Dictionary
