// Helper, not installed: the host's callbacks in a checked build.

#ifndef DICTIONARY_BUILD_CALLBACKS_H
#define DICTIONARY_BUILD_CALLBACKS_H

#include <cxxabi.h>

#include <cstddef>
#include <cstdint>

#include "DATChecked.h"

namespace Dictionary {

// Thrown when a callback says so, or throws itself.
struct BuildStopped {};

class BuildCallbacks {
public:
    explicit BuildCallbacks(const DictionaryBuildOptions& options)
        : m_onProblem(options.onProblem),
          m_onProgress(options.onProgress),
          m_onImage(options.onImage),
          m_context(options.context) {}

    void problem(const DictionaryProblem& problem) const {
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

    bool takesImage() const { return m_onImage != nullptr; }
    void image(const char* bytes, std::size_t size) const {
        goOnIf([&] { return m_onImage(m_context, bytes, size); });
    }

private:
    // The end of a thread has no object, which sanitizers take for a fault.
    template <class Call>
    __attribute__((no_sanitize("null"))) static void goOnIf(Call call) {
        bool goOn = false;
        try {
            goOn = call();
        } catch (const abi::__forced_unwind&) {
            throw;  // the thread ends here
        } catch (...) {
            // No exception of the host passes through its own C calls.
        }
        if (!goOn) throw BuildStopped();
    }

    void (*m_onProblem)(void*, const DictionaryProblem*);
    bool (*m_onProgress)(void*, int, std::uint64_t, std::uint64_t);
    bool (*m_onImage)(void*, const void*, std::size_t);
    void* m_context;
};

}  // namespace Dictionary

#endif
