#include "Listing.h"

#include <CLI/CLI.hpp>
#include <sstream>

namespace dictool {

std::vector<const CLI::App*> commandsOf(const CLI::App& program) {
    return program.get_subcommands(
        [](const CLI::App* command) { return !command->get_group().empty(); });
}

const CLI::App* findCommand(const CLI::App& program, const std::string& name) {
    for (const CLI::App* command : program.get_subcommands({})) {
        if (command->get_name() == name) return command;
    }
    return nullptr;
}

const std::string& nameOf(const CLI::App& command) {
    return command.get_name();
}

std::string summaryOf(const CLI::App& command) {
    return command.get_description();
}

std::string detailsOf(const CLI::App& command) {
    return command.get_footer();
}

std::string helpOf(const CLI::App& program, const CLI::App& command) {
    const std::string before = &command == &program ? "" : program.get_name() + " ";
    return command.get_formatter()->make_help(&command, before + command.get_name(),
                                              CLI::AppFormatMode::Normal);
}

std::vector<const CLI::Option*> optionsOf(const CLI::App& command) {
    return command.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

std::vector<const CLI::Option*> argumentsOf(const CLI::App& command) {
    return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::string nameOf(const CLI::Option& option) {
    return option.get_name();
}

std::string summaryOf(const CLI::Option& option) {
    return option.get_description();
}

std::string defaultOf(const CLI::Option& option) {
    return option.get_default_str();
}

bool isRequired(const CLI::Option& option) {
    return option.get_required();
}

bool comesOften(const CLI::Option& option) {
    return option.get_expected_max() > 1;
}

std::string placeholderOf(const CLI::Option& option) {
    return option.get_type_name();
}

std::vector<std::string> choicesOf(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    const std::size_t open = type.find('{');
    const std::size_t close = type.find('}');
    if (open == std::string::npos || close == std::string::npos) return {};
    std::istringstream list(type.substr(open + 1, close - open - 1));
    std::vector<std::string> choices;
    for (std::string choice; std::getline(list, choice, ',');) choices.push_back(choice);
    return choices;
}

const std::vector<std::string>& shortNamesOf(const CLI::Option& option) {
    return option.get_snames();
}

const std::vector<std::string>& longNamesOf(const CLI::Option& option) {
    return option.get_lnames();
}

std::vector<std::string> namesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : shortNamesOf(option)) names.push_back("-" + name);
    for (const std::string& name : longNamesOf(option)) names.push_back("--" + name);
    return names;
}

std::string join(const std::vector<std::string>& words, const std::string& between) {
    std::string joined;
    for (const std::string& word : words) joined += (joined.empty() ? "" : between) + word;
    return joined;
}

std::string escaped(const std::string& text, const std::string& special,
                    const std::string& escape) {
    std::string result;
    for (const char character : text) {
        if (special.find(character) != std::string::npos) result += escape;
        result += character;
    }
    return result;
}

}  // namespace dictool
