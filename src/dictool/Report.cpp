#include "Report.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include "Printable.h"

namespace dictool {

namespace {

constexpr std::string_view kPlain = "\x1b[0m";

struct SeverityStyle {
    std::string_view word;
    std::string_view color;
};

SeverityStyle styleOf(DictionarySeverity severity) {
    constexpr SeverityStyle kError = {"error", "\x1b[1;31m"};
    constexpr SeverityStyle kWarning = {"warning", "\x1b[1;35m"};
    return severity == DICTIONARY_ERROR ? kError : kWarning;
}

bool colored() {
    const char* refused = std::getenv("NO_COLOR");
    return errorsOnTerminal() && (refused == nullptr || *refused == '\0');
}

bool refusesImage(int code) {
    return code >= DICTIONARY_IMAGE_TOO_SHORT && code <= DICTIONARY_IMAGE_FEATURE;
}

constexpr std::string_view kAfterName = ": ";

// The library's message without the place: "NAME: what is wrong".
std::string wordsOf(DictionaryError error) {
    error.path = nullptr;
    error.line = error.column = 0;
    std::string words(dictionaryErrorMessage(&error, nullptr, 0), '\0');
    dictionaryErrorMessage(&error, words.data(), words.size() + 1);
    return words;
}

// When standard error fails, there is nowhere to report it.
void writeError(std::string_view message) {
    while (!message.empty()) {
        const ssize_t written = ::write(STDERR_FILENO, message.data(), message.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return;
        message.remove_prefix(static_cast<std::size_t>(written));
    }
}

}  // namespace

void report(DictionarySeverity severity, const Place& place, std::string_view code,
            std::string_view text) {
    const SeverityStyle style = styleOf(severity);
    std::string message = "dictool: ";
    if (!place.file.empty()) {
        message += printable(place.file);
        if (place.line != 0) message += ':' + std::to_string(place.line);
        if (place.column != 0) message += ':' + std::to_string(place.column);
        message += ": ";
    }
    if (colored()) {
        message.append(style.color).append(style.word).append(kPlain);
    } else {
        message += style.word;
    }
    message.append(" ").append(code).append(": ").append(printable(text)).append("\n");
    writeError(message);
}

void report(const Failure& failure) {
    report(DICTIONARY_ERROR, failure.place, failure.code, failure.text);
}

Status statusOf(int code) {
    if (code == DICTIONARY_STOPPED) return kInterrupted;
    return refusesImage(code) ? kBadImage : kTrouble;
}

Failure failureOf(const DictionaryError& error, const std::string& file) {
    const std::string name = dictionaryCodeName(error.code);
    return {statusOf(error.code),
            {file, error.line, error.column},
            name,
            wordsOf(error).substr(name.size() + kAfterName.size())};
}

std::string messageOf(std::string_view text) {
    return "dictool: " + printable(text) + "\n";
}

void remark(std::string_view text) {
    writeError(messageOf(text));
}

Failure systemFailure(const std::string& file, const std::string& code, const std::string& advice) {
    return {kTrouble, {file}, code, std::generic_category().message(errno) + "; " + advice};
}

bool errorsOnTerminal() {
    return isatty(STDERR_FILENO) != 0;
}

}  // namespace dictool
