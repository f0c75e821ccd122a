// The program's commands and options, for whoever describes them: manual pages and completions.

#ifndef DICTOOL_LISTING_H
#define DICTOOL_LISTING_H

#include <string>
#include <vector>

#include "Command.h"

namespace dictool {

// The commands that users are told of.
inline std::vector<const CLI::App*> commandsOf(const CLI::App& program) {
    return program.get_subcommands(
        [](const CLI::App* command) { return !command->get_group().empty(); });
}

inline std::vector<const CLI::Option*> optionsOf(const CLI::App& command) {
    return command.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

inline std::vector<const CLI::Option*> argumentsOf(const CLI::App& command) {
    return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

inline bool takesValue(const CLI::Option& option) {
    return !option.get_type_name().empty();
}

// "-f" and "--format".
inline std::vector<std::string> namesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
    return names;
}

inline std::string join(const std::vector<std::string>& words, const std::string& between) {
    return CLI::detail::join(words, between);
}

// `text` with `escape` in front of each character of `special`.
inline std::string escaped(const std::string& text, const std::string& special,
                           const std::string& escape) {
    std::string result;
    for (const char character : text) {
        if (special.find(character) != std::string::npos) result += escape;
        result += character;
    }
    return result;
}

}  // namespace dictool

#endif
