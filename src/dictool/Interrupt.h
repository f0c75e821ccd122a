// What SIGINT, SIGTERM and SIGHUP do while an image is built. A signal that was ignored when the
// program started stays ignored.

#ifndef DICTOOL_INTERRUPT_H
#define DICTOOL_INTERRUPT_H

#include <string>

namespace dictool {

// From now on they end the program at once: `words` go to standard error, and the status is
// kInterrupted. This is right as long as there is nothing to clean up.
void endWhenInterrupted(const std::string& words);

// From now on they are only noted.
void noteInterrupts();

// Whether one was noted.
bool interrupted();

}  // namespace dictool

#endif
