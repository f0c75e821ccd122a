#include "Interrupt.h"

#include <unistd.h>

#include <csignal>

#include "Report.h"

namespace dictool {

namespace {

// What the handler uses. The text is complete before the handler is installed.
std::string lastWords;
volatile std::sig_atomic_t isOnlyNoted = 0;
volatile std::sig_atomic_t isInterrupted = 0;

void onSignal(int) {
    isInterrupted = 1;
    if (isOnlyNoted != 0) return;
    // When standard error fails, there is nowhere to report it.
    [[maybe_unused]] const ssize_t written =
        ::write(STDERR_FILENO, lastWords.data(), lastWords.size());
    ::_exit(kInterrupted);
}

}  // namespace

void endWhenInterrupted(const std::string& words) {
    lastWords = words;
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before;
        ::sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) ::sigaction(signal, &action, nullptr);
    }
}

void noteInterrupts() {
    isOnlyNoted = 1;
}

bool interrupted() {
    return isInterrupted != 0;
}

}  // namespace dictool
