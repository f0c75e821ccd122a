// Helper, not installed: lets a write beyond the limit of a file's size fail like any other.

#ifndef DICTIONARY_SIZE_SIGNAL_H
#define DICTIONARY_SIZE_SIGNAL_H

#include <signal.h>

#include "Descriptor.h"

namespace Dictionary {

// While it lives, such a write of this thread returns EFBIG, and the signal SIGXFSZ that comes with
// it, and would end the process, is dropped. One that was pending before stays pending.
class SizeSignalHeld {
public:
    SizeSignalHeld() {
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGXFSZ) == 1;
        sigemptyset(&m_signal);
        sigaddset(&m_signal, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &m_signal, &m_before);
    }
    SizeSignalHeld(const SizeSignalHeld&) = delete;
    SizeSignalHeld& operator=(const SizeSignalHeld&) = delete;
    ~SizeSignalHeld() {
        constexpr timespec kAtOnce = {};
        if (!m_wasPending) {
            callUninterrupted([&] { return sigtimedwait(&m_signal, nullptr, &kAtOnce); });
        }
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

private:
    sigset_t m_signal;
    sigset_t m_before;
    bool m_wasPending;
};

}  // namespace Dictionary

#endif
