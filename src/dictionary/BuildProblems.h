// Helper, not installed: the problems of a checked build, as they are counted and told to the host.

#ifndef DICTIONARY_BUILD_PROBLEMS_H
#define DICTIONARY_BUILD_PROBLEMS_H

#include <cstdint>

#include "BuildCallbacks.h"
#include "DATChecked.h"

namespace Dictionary {

// Thrown where the system refuses to read the source or to write the image.
struct SystemFailure {
    int code;   // a DictionaryProblemCode
    int error;  // errno
};

const char* problemName(int code);

class ProblemLog {
public:
    ProblemLog(const DictionaryBuildOptions& options, const BuildCallbacks& callbacks);

    // Counts a problem, and tells it unless the limit is reached. Line and column count from 1; 0
    // where none is meant.
    void add(int code, std::uint64_t line = 0, std::uint64_t column = 0, int systemError = 0);
    // The same for a problem of the whole source that is told in other words than its code's.
    void addInWords(int code, const char* text);

    std::uint64_t count() const { return m_count; }
    bool hasErrors() const { return m_hasErrors; }

private:
    bool isTold(DictionarySeverity severity);
    DictionarySeverity severityOf(int code) const;
    void tell(DictionaryProblem problem) const;

    const BuildCallbacks& m_callbacks;
    std::uint64_t m_limit;
    bool m_lenient;
    std::uint64_t m_count = 0;
    bool m_hasErrors = false;
};

}  // namespace Dictionary

#endif
