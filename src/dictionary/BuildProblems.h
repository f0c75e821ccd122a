// Helper, not installed: the problems of a build, as they are counted and reported.

#ifndef DICTIONARY_BUILD_PROBLEMS_H
#define DICTIONARY_BUILD_PROBLEMS_H

#include <cstdint>

#include "BuildCallbacks.h"
#include "Dictionary.h"
#include "Errors.h"
#include "SystemFailure.h"

namespace Dictionary {

class ProblemLog {
public:
    // Counts into `count`. The paths are those of the problems' files, and may be null.
    ProblemLog(const DictionaryBuildOptions& options, const BuildCallbacks& callbacks,
               std::uint64_t& count, const char* sourcePath, const char* imagePath);

    // Counts a problem, and reports it unless the limit is reached.
    void add(DictionaryError problem);
    void add(const SystemFailure& failure);
    void addOfSource(DictionaryError problem);
    void addOfImage(DictionaryError problem);

    bool hasErrors() const { return m_firstError.code != DICTIONARY_OK; }
    const DictionaryError& firstError() const { return m_firstError; }

private:
    const BuildCallbacks& m_callbacks;
    std::uint64_t& m_count;
    const char* m_sourcePath;
    const char* m_imagePath;
    std::uint64_t m_limit;
    bool m_lenient;
    DictionaryError m_firstError = errorOf(DICTIONARY_OK);
};

}  // namespace Dictionary

#endif
