// What the program says when there is no command of a name.

#ifndef DICTOOL_HELP_H
#define DICTOOL_HELP_H

#include <string>

#include "Command.h"

namespace dictool {

// Throws Failure when the first argument should be a command and is none.
void checkCommand(const CLI::App& program, const std::vector<std::string>& arguments);

}  // namespace dictool

#endif
