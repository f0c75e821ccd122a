// An error record as one line of text.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "Dictionary.h"
#include "Errors.h"
#include "EscapedLine.h"

namespace Dictionary {

namespace {

void addPlace(const DictionaryError& error, EscapedLine& line) {
    const char* separator = "";
    if (error.path != nullptr) {
        line.addEscaped(error.path);
        separator = ":";
    }
    for (const std::uint64_t number : {error.line, error.column}) {
        if (number == 0) continue;
        line.addNumber(separator, static_cast<std::int64_t>(number));
        separator = ":";
    }
    if (*separator != '\0') line.add(": ");
}

void addSystemReason(int systemError, EscapedLine& line) {
    if (systemError == 0) return;
    char room[128];
    line.add(": ");
    line.addEscaped(strerror_r(systemError, room, sizeof room));
}

}  // namespace

}  // namespace Dictionary

size_t dictionaryErrorMessage(const DictionaryError* error, char* buffer, size_t size) {
    Dictionary::EscapedLine line(buffer, size);
    if (error == nullptr) return line.finish();
    Dictionary::addPlace(*error, line);
    line.add(dictionaryCodeName(error->code));
    if (error->text[0] != '\0') {
        line.add(": ");
        line.addEscaped({error->text, strnlen(error->text, sizeof error->text)});
    }
    Dictionary::addSystemReason(error->systemError, line);
    if (error->cell >= 0) line.addNumber(", cell ", error->cell);
    if (error->offset >= 0) line.addNumber(", byte ", error->offset);
    return line.finish();
}
