#include <algorithm>
#include <cstddef>
#include <cstring>
#include <exception>

#include "BuildCallbacks.h"
#include "BuildProblems.h"
#include "CheckedBuild.h"
#include "DATChecked.h"
#include "SourceText.h"

namespace Dictionary {

namespace {

// As much of `given` as its maker knew of; the rest is 0.
DictionaryBuildOptions knownPart(const DictionaryBuildOptions* given) {
    DictionaryBuildOptions options = {};
    if (given != nullptr) std::memcpy(&options, given, std::min(given->size, sizeof options));
    return options;
}

// Likewise.
void handOut(DictionaryBuildReport report, DictionaryBuildReport* to) {
    if (to == nullptr) return;
    report.size = to->size;
    std::memcpy(to, &report, std::min(report.size, sizeof report));
}

// What the build throws becomes a problem; only that it was stopped goes on to the caller.
void run(SourceText& source, const char* imageName, const DictionaryBuildOptions& options,
         const BuildCallbacks& callbacks, ProblemLog& log, DictionaryBuildReport& report) {
    try {
        CheckedBuild(options, callbacks, log, report).run(source, imageName);
    } catch (const SystemFailure& failure) {
        log.add(failure.code, 0, 0, failure.error);
    } catch (const std::exception&) {
        // The library throws nothing else, and the standard library when memory runs out.
        log.add(DICTIONARY_PROBLEM_NO_MEMORY);
    }
}

int build(SourceText& source, const char* imageName, const DictionaryBuildOptions* given,
          DictionaryBuildReport* report) {
    const DictionaryBuildOptions options = knownPart(given);
    const BuildCallbacks callbacks(options);
    ProblemLog log(options, callbacks);
    DictionaryBuildReport counts = {};
    bool stopped = false;
    try {
        run(source, imageName, options, callbacks, log, counts);
    } catch (const BuildStopped&) {
        stopped = true;
    }
    counts.problems = log.count();
    handOut(counts, report);
    if (stopped) return DICTIONARY_STOPPED;
    if (log.hasErrors()) return DICTIONARY_NOT_BUILT;
    return counts.refused > 0 ? DICTIONARY_BUILT_WITHOUT_SOME : DICTIONARY_BUILT;
}

}  // namespace

}  // namespace Dictionary

const char* dictionaryProblemName(int code) {
    return Dictionary::problemName(code);
}

int dictionaryBuild(const char* sourceName, const char* imageName,
                    const DictionaryBuildOptions* options, DictionaryBuildReport* report) {
    Dictionary::FileText source(sourceName);
    return Dictionary::build(source, imageName, options, report);
}

int dictionaryBuildBytes(const char* source, size_t size, const char* imageName,
                         const DictionaryBuildOptions* options, DictionaryBuildReport* report) {
    Dictionary::MemoryText text(source, size);
    return Dictionary::build(text, imageName, options, report);
}
