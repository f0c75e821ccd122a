#include "Command.h"

#include <sstream>

namespace dictool {

namespace {

// No option begins with it.
constexpr char kGuard = '\x01';

std::string unguarded(const std::string& text) {
    return text.substr(!text.empty() && text.front() == kGuard ? 1 : 0);
}

}  // namespace

std::vector<std::string> guardedArguments(int count, char** arguments) {
    std::vector<std::string> guarded;
    bool textsOnly = false;
    for (int i = 1; i < count; ++i) {
        const std::string text = arguments[i];
        if (text == "--" && !textsOnly) {
            textsOnly = true;
            continue;
        }
        const bool looksSpecial = !text.empty() && (text.front() == '[' || text.front() == kGuard);
        guarded.push_back(textsOnly || looksSpecial ? kGuard + text : text);
    }
    return guarded;
}

CLI::Option& addText(CLI::App& command, const std::string& name, std::string& value,
                     const std::string& help) {
    const auto take = [&value](const CLI::results_t& results) {
        value = unguarded(results.back());
        return true;
    };
    return *command.add_option(name, take, help)->default_str(value);
}

void addArgument(CLI::App& command, const std::string& name, std::string& value,
                 const std::string& help) {
    addText(command, name, value, help).required()->type_name("");
}

CLI::Option& addArguments(CLI::App& command, const std::string& name,
                          std::vector<std::string>& values, const std::string& help) {
    const auto take = [&values](const CLI::results_t& results) {
        for (const std::string& result : results) values.push_back(unguarded(result));
        return true;
    };
    return *command.add_option(name, take, help)
                ->expected(0, CLI::detail::expected_max_vector_size)
                ->allow_extra_args()
                ->option_text(" ");
}

CLI::Option& addTexts(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                      const std::string& help) {
    const auto take = [&values](const CLI::results_t& results) {
        for (const std::string& result : results) values.push_back(unguarded(result));
        return true;
    };
    return *command.add_option(name, take, help)
                ->expected(1, CLI::detail::expected_max_vector_size)
                ->allow_extra_args(false);
}

CLI::Option& addNumber(CLI::App& command, const std::string& name, unsigned& value,
                       const std::string& help) {
    return *command.add_option(name, value, help)->type_name("N");
}

void addLineFormat(CLI::App& command, std::string& format, bool& zeroEnded) {
    addChoice(command, "-f,--format", format, {"text", "tsv", "json"},
              "How to write what is found");
    addZero(command, zeroEnded);
}

void addZero(CLI::App& command, bool& zeroEnded) {
    command.add_flag("-z,--zero", zeroEnded, "Lines end with a NUL, in and out");
}

CLI::Option& addChoice(CLI::App& command, const std::string& name, std::string& value,
                       const std::vector<std::string>& choices, const std::string& help) {
    return *command.add_option(name, value, help)
                ->check(CLI::IsMember(choices))
                ->type_name("WORD")
                ->capture_default_str();
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

}  // namespace dictool
