// The program's commands and options, for help, manual pages and completions.

#ifndef DICTOOL_LISTING_H
#define DICTOOL_LISTING_H

#include <string>
#include <vector>

#include "Command.h"

namespace dictool {

// The commands that users see.
std::vector<const CLI::App*> commandsOf(const CLI::App& program);

// Finds hidden commands, too. Null if there is none of that name.
const CLI::App* findCommand(const CLI::App& program, const std::string& name);

// What describes the program or one of its commands.
const std::string& nameOf(const CLI::App& command);
std::string summaryOf(const CLI::App& command);
std::string detailsOf(const CLI::App& command);
std::string helpOf(const CLI::App& program, const CLI::App& command);

std::vector<const CLI::Option*> optionsOf(const CLI::App& command);
std::vector<const CLI::Option*> argumentsOf(const CLI::App& command);

// What describes an option or an argument.
std::string nameOf(const CLI::Option& option);
std::string summaryOf(const CLI::Option& option);
std::string defaultOf(const CLI::Option& option);
bool isRequired(const CLI::Option& option);
bool comesOften(const CLI::Option& option);

// The word for its value; empty for a flag.
std::string placeholderOf(const CLI::Option& option);

// The words that its value may be; empty if any value will do.
std::vector<std::string> choicesOf(const CLI::Option& option);

// "f" and "format".
const std::vector<std::string>& shortNamesOf(const CLI::Option& option);
const std::vector<std::string>& longNamesOf(const CLI::Option& option);

// "-f" and "--format".
std::vector<std::string> namesOf(const CLI::Option& option);

std::string join(const std::vector<std::string>& words, const std::string& between);

// `text` with `escape` before each character of `special`.
std::string escaped(const std::string& text, const std::string& special, const std::string& escape);

}  // namespace dictool

#endif
