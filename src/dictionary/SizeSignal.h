// Helper, not installed: makes a write beyond the file size limit fail like any other write.

#ifndef DICTIONARY_SIZE_SIGNAL_H
#define DICTIONARY_SIZE_SIGNAL_H

#include <signal.h>

#include "Descriptor.h"

namespace Dictionary {

// While it exists, such a write by this thread fails with EFBIG. The signal SIGXFSZ comes with it
// and would end the process; it is dropped. A signal that was pending before stays pending.
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
