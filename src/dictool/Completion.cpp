// completion, a command that the help does not list: scripts that let shells complete commands and
// options.

#include "Listing.h"
#include "Output.h"
#include "Report.h"

namespace dictool {

namespace {

struct CompletionOptions {
    const CLI::App* program = nullptr;
    std::string shell;
};

std::string quoted(const std::string& text) {
    std::string inside;
    for (const char character : text) {
        inside += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return "'" + inside + "'";
}

std::vector<std::string> commandNames(const CLI::App& program) {
    std::vector<std::string> names;
    for (const CLI::App* command : commandsOf(program)) names.push_back(nameOf(*command));
    return names;
}

// The words that the value of an option may be, by the option before it.
std::string bashChoices(const CLI::App& command) {
    std::string cases;
    for (const CLI::Option* option : optionsOf(command)) {
        const std::vector<std::string> choices = choicesOf(*option);
        if (choices.empty()) continue;
        std::vector<std::string> patterns;
        for (const std::string& name : namesOf(*option)) {
            patterns.push_back(nameOf(command) + ":" + name);
        }
        cases += "        " + join(patterns, " | ") + ") words='" + join(choices, " ") + "' ;;\n";
    }
    return cases;
}

std::string bashOptions(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : optionsOf(command)) {
        for (const std::string& name : namesOf(*option)) names.push_back(name);
    }
    return "        " + nameOf(command) + ":*) options='" + join(names, " ") + "' ;;\n";
}

std::string bashScript(const CLI::App& program) {
    std::string choices, options;
    for (const CLI::App* command : commandsOf(program)) {
        choices += bashChoices(*command);
        options += bashOptions(*command);
    }
    return "_dictool() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} words= options=\n"
           "    local place=${COMP_WORDS[1]}:${COMP_WORDS[COMP_CWORD - 1]}\n"
           "    if ((COMP_CWORD == 1)); then\n"
           "        words='" +
           join(commandNames(program), " ") +
           " --help --version'\n"
           "    fi\n"
           "    case $place in\n" +
           choices +
           "    esac\n"
           "    case $place in\n" +
           options +
           "    esac\n"
           "    [[ $current == -* && -z $words ]] && words=$options\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
           "}\n"
           "complete -o default -F _dictool dictool\n";
}

std::string zshOption(const CLI::Option& option) {
    const std::vector<std::string> names = namesOf(option);
    const std::string help = "[" + escaped(summaryOf(option), "[]:\\", "\\") + "]";
    const std::vector<std::string> choices = choicesOf(option);
    const bool takesValue = !placeholderOf(option).empty();
    std::string value = takesValue ? ":value:" : "";
    if (takesValue) value += choices.empty() ? "_files" : "(" + join(choices, " ") + ")";
    if (names.size() == 1) return " " + quoted(names[0] + help + value);
    return " " + quoted("(" + join(names, " ") + ")") + "{" + join(names, ",") + "}" +
           quoted(help + value);
}

std::string zshScript(const CLI::App& program) {
    std::string commands, cases;
    for (const CLI::App* command : commandsOf(program)) {
        const std::string& name = nameOf(*command);
        commands += "        " + quoted(name + ":" + summaryOf(*command)) + "\n";
        cases += "        " + name + ") _arguments";
        for (const CLI::Option* option : optionsOf(*command)) cases += zshOption(*option);
        cases += " '*:file:_files' ;;\n";
    }
    return "#compdef dictool\n"
           "local -a commands\n"
           "if ((CURRENT == 2)); then\n"
           "    commands=(\n" +
           commands +
           "    )\n"
           "    _describe command commands\n"
           "else\n"
           "    shift words\n"
           "    ((CURRENT--))\n"
           "    case $words[1] in\n" +
           cases +
           "    esac\n"
           "fi\n";
}

std::string fishOption(const CLI::Option& option, const std::string& begin) {
    std::string line = begin;
    for (const std::string& name : shortNamesOf(option)) line += " -s " + name;
    for (const std::string& name : longNamesOf(option)) line += " -l " + name;
    const std::vector<std::string> choices = choicesOf(option);
    if (!placeholderOf(option).empty()) {
        line += choices.empty() ? " -r" : " -x -a '" + join(choices, " ") + "'";
    }
    return line + " -d '" + escaped(summaryOf(option), "'\\", "\\") + "'\n";
}

std::string fishScript(const CLI::App& program) {
    std::string script;
    for (const CLI::App* command : commandsOf(program)) {
        const std::string& name = nameOf(*command);
        script += "complete -c dictool -n __fish_use_subcommand -f -a " + name + " -d '" +
                  escaped(summaryOf(*command), "'\\", "\\") + "'\n";
        const std::string begin =
            "complete -c dictool -n '__fish_seen_subcommand_from " + name + "'";
        for (const CLI::Option* option : optionsOf(*command)) script += fishOption(*option, begin);
    }
    return script;
}

constexpr struct {
    const char* shell;
    std::string (*write)(const CLI::App& program);
} kShells[] = {{"bash", bashScript}, {"zsh", zshScript}, {"fish", fishScript}};

int run(const CompletionOptions& options) {
    for (const auto& shell : kShells) {
        if (options.shell == shell.shell) print(shell.write(*options.program));
    }
    return kDone;
}

}  // namespace

void defineCompletion(CLI::App& program, Action& action) {
    static CompletionOptions options;
    options.program = &program;
    CLI::App& command =
        addCommand(program, action, "completion", "Write a completion script for a shell",
                   "Put it where the shell looks for such scripts.", options, run);
    std::vector<std::string> shells;
    for (const auto& shell : kShells) shells.emplace_back(shell.shell);
    hide(command);
    addChoice(command, "SHELL", options.shell, shells, "The shell").required();
}

}  // namespace dictool
