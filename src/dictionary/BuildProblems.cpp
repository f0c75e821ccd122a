#include "BuildProblems.h"

namespace Dictionary {

namespace {

constexpr unsigned kDefaultLimit = 100;

}  // namespace

ProblemLog::ProblemLog(const DictionaryBuildOptions& options, const BuildCallbacks& callbacks,
                       std::uint64_t& count, const char* sourcePath, const char* imagePath)
    : m_callbacks(callbacks),
      m_count(count),
      m_sourcePath(sourcePath),
      m_imagePath(imagePath),
      m_limit(options.problemLimit == 0 ? kDefaultLimit : options.problemLimit),
      m_lenient(options.lenient) {}

void ProblemLog::add(DictionaryError problem) {
    if (m_lenient) problem.severity = codeKindOf(problem.code).lenientSeverity;
    const bool isFirstError = problem.severity == DICTIONARY_ERROR && !hasErrors();
    if (isFirstError) m_firstError = problem;
    // The first error is reported beyond the limit, too: the caller must know why there is no
    // image.
    if (++m_count <= m_limit || isFirstError) m_callbacks.problem(problem);
}

void ProblemLog::addOfSource(DictionaryError problem) {
    problem.file = DICTIONARY_FILE_SOURCE;
    problem.path = m_sourcePath;
    add(problem);
}

void ProblemLog::addOfImage(DictionaryError problem) {
    problem.file = DICTIONARY_FILE_IMAGE;
    problem.path = m_imagePath;
    add(problem);
}

void ProblemLog::add(const SystemFailure& failure) {
    const bool isOfSource = failure.file == SystemFailure::kSource;
    DictionaryError problem =
        errorOf(isOfSource ? DICTIONARY_CANNOT_READ : DICTIONARY_CANNOT_WRITE);
    problem.systemError = failure.error;
    isOfSource ? addOfSource(problem) : addOfImage(problem);
}

}  // namespace Dictionary
