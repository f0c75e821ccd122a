// Helper, not installed: the caller's callbacks in a build.

#ifndef DICTIONARY_BUILD_CALLBACKS_H
#define DICTIONARY_BUILD_CALLBACKS_H

#include <cstdint>

#include "CallerCallback.h"
#include "Dictionary.h"
#include "Errors.h"

namespace Dictionary {

// Throws DICTIONARY_STOPPED when a callback stops the build or throws.
class BuildCallbacks {
public:
    explicit BuildCallbacks(const DictionaryBuildOptions& options)
        : m_onProblem(options.onProblem),
          m_onProgress(options.onProgress),
          m_context(options.context) {}

    void problem(const DictionaryError& problem) const {
        if (m_onProblem == nullptr) return;
        goOnIf([&] {
            m_onProblem(m_context, &problem);
            return true;
        });
    }

    void progress(int stage, std::uint64_t done, std::uint64_t total) const {
        if (m_onProgress == nullptr) return;
        goOnIf([&] { return m_onProgress(m_context, stage, done, total); });
    }

private:
    template <class Call>
    static void goOnIf(const Call& call) {
        if (!callBack(call)) throw Failure{errorOf(DICTIONARY_STOPPED)};
    }

    void (*m_onProblem)(void*, const DictionaryError*);
    bool (*m_onProgress)(void*, int, std::uint64_t, std::uint64_t);
    void* m_context;
};

}  // namespace Dictionary

#endif
