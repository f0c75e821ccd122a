// What the program does with the name of a command that does not exist.

#ifndef DICTOOL_HELP_H
#define DICTOOL_HELP_H

#include <string>

#include "Command.h"

namespace dictool {

// Throws Failure when the first argument should be a command but is not.
void checkCommand(const CLI::App& program, const std::vector<std::string>& arguments);

}  // namespace dictool

#endif
