// What every command offers to the program.

#ifndef DICTOOL_COMMAND_H
#define DICTOOL_COMMAND_H

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

namespace dictool {

// What is to be run once the command line is understood; returns a Status.
using Action = std::function<int()>;

// Each adds commands to `program`; one that is chosen sets `action`.
using DefineCommand = void (*)(CLI::App& program, Action& action);
void defineBuild(CLI::App& program, Action& action);  // build and lint
void defineKeys(CLI::App& program, Action& action);
void defineSearch(CLI::App& program, Action& action);
void defineSegment(CLI::App& program, Action& action);
void defineReplace(CLI::App& program, Action& action);
void defineLookup(CLI::App& program, Action& action);
void defineDump(CLI::App& program, Action& action);
void defineStat(CLI::App& program, Action& action);
void defineVerify(CLI::App& program, Action& action);
void defineDiff(CLI::App& program, Action& action);
void defineView(CLI::App& program, Action& action);
void defineManual(CLI::App& program, Action& action);
void defineCompletion(CLI::App& program, Action& action);
void defineHelp(CLI::App& program, Action& action);

// Adds a command whose options live as long as the program. `details` stands behind the options in
// the help and as the description in the manual.
template <class Options>
CLI::App& addCommand(CLI::App& program, Action& action, const std::string& name,
                     const std::string& summary, const std::string& details, Options& options,
                     int (*run)(const Options&)) {
    CLI::App& command = *program.add_subcommand(name, summary);
    command.footer(details);
    command.callback(
        [&action, &options, run] { action = [&options, run] { return run(options); }; });
    return command;
}

// The program's arguments, made so that texts are taken as they come: all that stands behind "--",
// and those in brackets, which would be taken for lists.
std::vector<std::string> guardedArguments(int count, char** arguments);

// An option that is a text.
CLI::Option& addText(CLI::App& command, const std::string& name, std::string& value,
                     const std::string& help);

// A positional argument that has to be there.
void addArgument(CLI::App& command, const std::string& name, std::string& value,
                 const std::string& help);

// Any number of positional arguments.
CLI::Option& addArguments(CLI::App& command, const std::string& name,
                          std::vector<std::string>& values, const std::string& help);

// An option with a text that can be given more than once.
CLI::Option& addTexts(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                      const std::string& help);

// An option that is a number, not below 0.
CLI::Option& addNumber(CLI::App& command, const std::string& name, unsigned& value,
                       const std::string& help);

// The options by which lines are written.
void addLineFormat(CLI::App& command, std::string& format, bool& zeroEnded);
void addZero(CLI::App& command, bool& zeroEnded);

// An option that is one of a few words.
CLI::Option& addChoice(CLI::App& command, const std::string& name, std::string& value,
                       const std::vector<std::string>& choices, const std::string& help);

// The words of such an option; empty for any other.
std::vector<std::string> choicesOf(const CLI::Option& option);

}  // namespace dictool

#endif
