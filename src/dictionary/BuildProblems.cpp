#include "BuildProblems.h"

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace Dictionary {

namespace {

constexpr unsigned kDefaultLimit = 100;

struct ProblemKind {
    const char* name;
    DictionarySeverity severity;
    DictionarySeverity lenientSeverity;
    const char* text;
    const char* advice;
};

// By code.
constexpr ProblemKind kKinds[] = {
    {"none", DICTIONARY_WARNING, DICTIONARY_WARNING, "nothing is wrong", "go on"},
    {"cannot-read", DICTIONARY_ERROR, DICTIONARY_ERROR, "the source cannot be read",
     "name a file or a pipe that can"},
    {"cannot-write", DICTIONARY_ERROR, DICTIONARY_ERROR, "the image cannot be written",
     "what stood under its name stands there still"},
    {"no-memory", DICTIONARY_ERROR, DICTIONARY_ERROR, "there is not enough memory",
     "free some or divide the source"},
    {"bad-separator", DICTIONARY_ERROR, DICTIONARY_ERROR,
     "a separator is empty or holds a NUL byte", "give one of other bytes"},
    {"no-field", DICTIONARY_ERROR, DICTIONARY_ERROR, "the record has no field separator",
     "put one and the data behind the key"},
    {"empty-record", DICTIONARY_ERROR, DICTIONARY_ERROR, "the record is empty",
     "remove it or give it a key and data"},
    {"nul", DICTIONARY_ERROR, DICTIONARY_ERROR, "the record holds a NUL byte", "remove it"},
    {"record-too-long", DICTIONARY_ERROR, DICTIONARY_ERROR,
     "the record is longer than 4194298 bytes", "shorten it"},
    {"unfinished", DICTIONARY_ERROR, DICTIONARY_ERROR, "the last record has no end",
     "put a record separator behind it"},
    {"image-too-large", DICTIONARY_ERROR, DICTIONARY_ERROR,
     "the image would be larger than 2147483647 bytes", "divide the source"},
    {"empty-key", DICTIONARY_ERROR, DICTIONARY_WARNING, "the key is empty and is never found",
     "put one in front of the field separator"},
    {"bad-utf8", DICTIONARY_ERROR, DICTIONARY_WARNING,
     "the key is not UTF-8 from here on and would be cut off here", "write it in UTF-8"},
    {"cr", DICTIONARY_ERROR, DICTIONARY_WARNING,
     "a carriage return ends the line and would be part of the data",
     "end lines with a newline alone, or use the option 'windows'"},
    {"bom", DICTIONARY_ERROR, DICTIONARY_WARNING,
     "a byte-order mark begins the source and would be part of the first key",
     "remove it, or use the option 'windows'"},
    {"beyond-bmp", DICTIONARY_REFUSED, DICTIONARY_REFUSED,
     "the key holds a character above U+FFFF and is left out", "write it without the character"},
    {"no-records", DICTIONARY_ERROR, DICTIONARY_ERROR, "the source has no records",
     "see what became of it, or use the option 'allow-empty'"},
    {"not-text", DICTIONARY_ERROR, DICTIONARY_ERROR, "the source is no text", "name another"},
    {"same-file", DICTIONARY_ERROR, DICTIONARY_ERROR, "the image would replace its own source",
     "give it another name"},
    {"semicolon", DICTIONARY_WARNING, DICTIONARY_WARNING,
     "the field begins with ';', which also joins the data of a key that comes more than once",
     "begin it otherwise if readers are to tell the two apart"}};

const ProblemKind& kindOf(int code) {
    return kKinds[static_cast<std::size_t>(code)];
}

}  // namespace

const char* problemName(int code) {
    const bool known = code >= 0 && static_cast<std::size_t>(code) < std::size(kKinds);
    return known ? kindOf(code).name : "unknown";
}

ProblemLog::ProblemLog(const DictionaryBuildOptions& options, const BuildCallbacks& callbacks)
    : m_callbacks(callbacks),
      m_limit(options.problemLimit == 0 ? kDefaultLimit : options.problemLimit),
      m_lenient(options.lenient) {}

void ProblemLog::add(int code, std::uint64_t line, std::uint64_t column, int systemError) {
    const DictionarySeverity severity = severityOf(code);
    if (isTold(severity)) tell({code, severity, systemError, line, column, nullptr});
}

void ProblemLog::addInWords(int code, const char* text) {
    const DictionarySeverity severity = severityOf(code);
    if (isTold(severity)) m_callbacks.problem({code, severity, 0, 0, 0, text});
}

DictionarySeverity ProblemLog::severityOf(int code) const {
    const ProblemKind& kind = kindOf(code);
    return m_lenient ? kind.lenientSeverity : kind.severity;
}

// Counts a problem. The first error is told beyond the limit, too: nobody should have to guess why
// there is no image.
bool ProblemLog::isTold(DictionarySeverity severity) {
    const bool firstError = severity == DICTIONARY_ERROR && !m_hasErrors;
    if (firstError) m_hasErrors = true;
    return ++m_count <= m_limit || firstError;
}

void ProblemLog::tell(DictionaryProblem problem) const {
    constexpr std::size_t kRoom = 512;
    const ProblemKind& kind = kindOf(problem.code);
    char text[kRoom];
    if (problem.systemError == 0) {
        std::snprintf(text, kRoom, "%s; %s", kind.text, kind.advice);
    } else {
        char room[kRoom];
        const char* const reason = strerror_r(problem.systemError, room, kRoom);
        std::snprintf(text, kRoom, "%s: %s; %s", kind.text, reason, kind.advice);
    }
    problem.text = text;
    m_callbacks.problem(problem);
}

}  // namespace Dictionary
