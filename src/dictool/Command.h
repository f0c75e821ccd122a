// How commands define their names, options and arguments. The parser's header takes long to
// compile, so only Command.cpp and Listing.cpp include it.

#ifndef DICTOOL_COMMAND_H
#define DICTOOL_COMMAND_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace dictool {

// What to run once the command line is parsed. Returns a Status.
using Action = std::function<int()>;

// Each adds its commands to `program`. The command that is chosen sets `action`.
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

// The program, to which commands are added.
std::shared_ptr<CLI::App> makeProgram(const std::string& name, const std::string& summary,
                                      const std::string& details, const std::string& version);

// The program's arguments, guarded so that some are taken as plain texts: everything after "--",
// and what begins with a bracket, which the parser would take for a list.
std::vector<std::string> guardedArguments(int count, char** arguments);

// Parses guarded arguments. Returns the page that they ask for, help or the version, or an empty
// text when a command is to be run. Throws a Failure for wrong usage.
std::string parse(CLI::App& program, const std::vector<std::string>& arguments);

// Adds a command. `details` follows the options in the help, and is the description in the manual.
CLI::App& addCommand(CLI::App& program, const std::string& name, const std::string& summary,
                     const std::string& details, std::function<void()> whenChosen);

// The same for a command whose options live as long as the program.
template <class Options>
CLI::App& addCommand(CLI::App& program, Action& action, const std::string& name,
                     const std::string& summary, const std::string& details, Options& options,
                     int (*run)(const Options&)) {
    return addCommand(program, name, summary, details, [&action, &options, run] {
        action = [&options, run] { return run(options); };
    });
}

// Removes a command from the list that users see.
void hide(CLI::App& command);

// An option or an argument that a command has.
class Option {
public:
    explicit Option(CLI::Option& option) : m_option(option) {}

    Option& required();
    // The word for its value in the help.
    Option& placeholder(const std::string& word);
    // It cannot be given together with `other`.
    Option& excludes(const Option& other);
    // It cannot be given without `other`.
    Option& needs(const Option& other);

private:
    CLI::Option& m_option;
};

// An option that the command already has.
Option optionNamed(CLI::App& command, const std::string& name);

Option addFlag(CLI::App& command, const std::string& name, bool& value, const std::string& help);

// An option whose value is a text.
Option addText(CLI::App& command, const std::string& name, std::string& value,
               const std::string& help);

// A required positional argument.
void addArgument(CLI::App& command, const std::string& name, std::string& value,
                 const std::string& help);

// Any number of positional arguments.
Option addArguments(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                    const std::string& help);

// An option whose value is a text, and which can be given more than once.
Option addTexts(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                const std::string& help);

// An option whose value is a number, 0 or more.
Option addNumber(CLI::App& command, const std::string& name, unsigned& value,
                 const std::string& help);

// An option whose value is a number from `least` to `most`. The help shows the range unless `most`
// is the largest number.
Option addNumber(CLI::App& command, const std::string& name, unsigned& value, unsigned least,
                 unsigned most, const std::string& help);

// An option whose value is a number that may have a fraction.
Option addReal(CLI::App& command, const std::string& name, double& value, const std::string& help);

// The options for how lines are written.
void addLineFormat(CLI::App& command, std::string& format, bool& zeroEnded);
void addZero(CLI::App& command, bool& zeroEnded);

// An option whose value is one of a few words.
Option addChoice(CLI::App& command, const std::string& name, std::string& value,
                 const std::vector<std::string>& choices, const std::string& help);

}  // namespace dictool

#endif
