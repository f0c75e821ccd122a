// Counting the items of an SQL statement.

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "StringUtil.h"

namespace Dictionary {

namespace {

struct ChangingStatement {
    const char* keyword;
    const char* message;
};

// The first keyword found decides.
constexpr ChangingStatement kChangingStatements[] = {
    {"delete ", "It is del sql\n"},
    {"truncate ", "Warning it is truncate sql \n"},
    {"update ", "It is update sql\n"},
};

constexpr char kSelect[] = "select";
constexpr std::size_t kSelectLength = sizeof(kSelect) - 1;

bool reportIfChanging(const char* statement) {
    for (const ChangingStatement& kind : kChangingStatements) {
        if (std::strstr(statement, kind.keyword) == nullptr) continue;
        std::fputs(kind.message, stdout);
        return true;
    }
    return false;
}

int countItems(std::string_view list) {
    int count = 1;
    bool isProtected = false;
    for (const char byte : list) {
        // Kept: protection has one level, which the first apostrophe or closing parenthesis ends.
        if (!isProtected) {
            isProtected = byte == '\'' || byte == '(';
        } else if (byte == '\'' || byte == ')') {
            isProtected = false;
        }
        if (byte == ',' && !isProtected) ++count;
    }
    return count;
}

}  // namespace

int GetItemNumFromSQL(std::string statement) {
    if (statement.empty()) return -1;
    const char* text = statement.c_str();
    if (reportIfChanging(text)) return 0;

    const char* from = std::strstr(text, "from ");
    if (from == nullptr) {
        std::fputs("sql err,because no find string \"from\"\n", stderr);
        return -1;
    }
    const char* select = std::strstr(text, kSelect);
    if (select == nullptr) {
        std::fputs("sql err,because no find string \"select\"\n", stderr);
        return -1;
    }
    const char* list = select + kSelectLength;
    if (from <= list) return 1;
    return countItems(std::string_view(list, static_cast<std::size_t>(from - list)));
}

}  // namespace Dictionary
