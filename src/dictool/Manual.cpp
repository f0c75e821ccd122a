// manual, a command that the help does not list: manual pages, from what the help is made of. A
// program that turns help texts into pages would have to take each command's text apart again.

#include "Dictionary.h"
#include "Listing.h"
#include "Output.h"
#include "Report.h"

namespace dictool {

namespace {

struct ManualOptions {
    const CLI::App* program = nullptr;
    std::string command;
};

std::string roff(const std::string& text) {
    std::string result;
    for (const char character : text) {
        if (character == '\\') {
            result += "\\e";
        } else if (character == '-') {
            result += "\\-";
        } else {
            // A dot or a quote at the start of a line would be a request.
            const bool startsLine = result.empty() || result.back() == '\n';
            if (startsLine && (character == '.' || character == '\'')) result += "\\&";
            result += character;
        }
    }
    return result;
}

std::string section(const std::string& title, const std::string& body) {
    return body.empty() ? "" : ".SH " + title + "\n" + body + "\n";
}

std::string item(const std::string& head, const std::string& text) {
    return ".TP\n\\fB" + roff(head) + "\\fR\n" + roff(text) + "\n";
}

std::string synopsisOf(const CLI::App& command, const std::string& name) {
    std::string synopsis = ".B " + roff(name) + "\n[OPTIONS]";
    for (const CLI::Option* argument : argumentsOf(command)) {
        std::string word = nameOf(*argument);
        if (comesOften(*argument)) word += "...";
        synopsis += isRequired(*argument) ? " " + word : " [" + word + "]";
    }
    return commandsOf(command).empty() ? synopsis : synopsis + " COMMAND";
}

std::string headOf(const CLI::Option& option) {
    const std::string names = join(namesOf(option), ", ");
    const std::string placeholder = placeholderOf(option);
    return placeholder.empty() ? names : names + " " + placeholder;
}

std::string textOf(const CLI::Option& option) {
    const std::string usual = defaultOf(option);
    const std::string text = summaryOf(option) + ".";
    return usual.empty() ? text : text + " Default: " + usual + ".";
}

std::string pageNameOf(std::string command) {
    std::replace(command.begin(), command.end(), ' ', '-');
    return command;
}

// The pages of the program, of its commands and of the library, without this one.
std::string seeAlso(const CLI::App& program, const std::string& page) {
    std::vector<std::string> names = {nameOf(program)};
    for (const CLI::App* command : commandsOf(program)) {
        names.push_back(nameOf(program) + "-" + nameOf(*command));
    }
    std::vector<std::string> others;
    for (const std::string& name : names) {
        if (name != page) others.push_back("\\fB" + roff(name) + "\\fR(1)");
    }
    others.push_back("\\fBdictionary\\fR(3)");
    return join(others, ",\n");
}

std::string pageOf(const CLI::App& program, const CLI::App& command, const std::string& name) {
    std::string arguments, options, commands;
    for (const CLI::Option* argument : argumentsOf(command)) {
        arguments += item(nameOf(*argument), summaryOf(*argument) + ".");
    }
    for (const CLI::Option* option : optionsOf(command)) {
        options += item(headOf(*option), textOf(*option));
    }
    for (const CLI::App* listed : commandsOf(command)) {
        commands += item(nameOf(*listed), summaryOf(*listed) + ".");
    }
    const std::string page = pageNameOf(name);
    return ".TH " + page + " 1 \"\" \"dictool " + dictionaryVersion() +
           "\" \"User Commands\"\n.ad l\n" +
           section("NAME", roff(page + " - " + summaryOf(command))) +
           section("SYNOPSIS", synopsisOf(command, name)) +
           section("DESCRIPTION", roff(detailsOf(command))) + section("COMMANDS", commands) +
           section("ARGUMENTS", arguments) + section("OPTIONS", options) +
           section("SEE ALSO", seeAlso(program, page));
}

int run(const ManualOptions& options) {
    const CLI::App& program = *options.program;
    if (options.command.empty()) {
        print(pageOf(program, program, nameOf(program)));
    } else {
        const CLI::App& command = *findCommand(program, options.command);
        print(pageOf(program, command, nameOf(program) + " " + nameOf(command)));
    }
    return kDone;
}

}  // namespace

void defineManual(CLI::App& program, Action& action) {
    static ManualOptions options;
    options.program = &program;
    CLI::App& command = addCommand(program, action, "manual", "Write a manual page",
                                   "Of a command, or of the program.", options, run);
    std::vector<std::string> names;
    for (const CLI::App* listed : commandsOf(program)) names.push_back(nameOf(*listed));
    hide(command);
    addChoice(command, "COMMAND", options.command, names, "The command");
}

}  // namespace dictool
