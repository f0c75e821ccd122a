#include "Command.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <limits>

#include "Report.h"

namespace dictool {

namespace {

// No option begins with it.
constexpr char kGuard = '\x01';

std::string unguarded(const std::string& text) {
    return text.substr(!text.empty() && text.front() == kGuard ? 1 : 0);
}

// Takes all values that an option or argument was given.
CLI::callback_t addingTo(std::vector<std::string>& values) {
    return [&values](const CLI::results_t& results) {
        for (const std::string& result : results) values.push_back(unguarded(result));
        return true;
    };
}

// Says how to name a file that looks like an option.
std::string adviceFor(const std::vector<std::string>& arguments) {
    for (const std::string& text : arguments) {
        if (text.size() > 1 && text.front() == '-' && ::access(text.c_str(), F_OK) == 0) {
            return "write the file " + text + " as ./" + text + " or after --";
        }
    }
    return "";
}

[[noreturn]] void refuseUsage(const CLI::App& program, const std::vector<std::string>& arguments,
                              const std::string& error) {
    const std::vector<CLI::App*> chosen = program.get_subcommands();
    const std::string name = chosen.empty() ? "dictool" : "dictool " + chosen[0]->get_name();
    std::string advice = adviceFor(arguments);
    if (advice.empty()) advice = "see '" + name + " --help'";
    throw Failure{kTrouble, {}, "usage", error + "; " + advice};
}

}  // namespace

std::shared_ptr<CLI::App> makeProgram(const std::string& name, const std::string& summary,
                                      const std::string& details, const std::string& version) {
    auto program = std::make_shared<CLI::App>(summary, name);
    program->footer(details);
    program->set_version_flag("--version", name + " " + version);
    program->require_subcommand(1);
    return program;
}

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

std::string parse(CLI::App& program, const std::vector<std::string>& arguments) {
    try {
        program.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::CallForHelp&) {
        return program.help();
    } catch (const CLI::CallForVersion& version) {
        return std::string(version.what()) + "\n";
    } catch (const CLI::ParseError& error) {
        refuseUsage(program, arguments, error.what());
    }
    return "";
}

CLI::App& addCommand(CLI::App& program, const std::string& name, const std::string& summary,
                     const std::string& details, std::function<void()> whenChosen) {
    CLI::App& command = *program.add_subcommand(name, summary);
    command.footer(details);
    command.callback(std::move(whenChosen));
    return command;
}

void hide(CLI::App& command) {
    command.group("");
}

Option& Option::required() {
    m_option.required();
    return *this;
}

Option& Option::placeholder(const std::string& word) {
    m_option.type_name(word);
    return *this;
}

Option& Option::excludes(const Option& other) {
    m_option.excludes(&other.m_option);
    return *this;
}

Option& Option::needs(const Option& other) {
    m_option.needs(&other.m_option);
    return *this;
}

Option optionNamed(CLI::App& command, const std::string& name) {
    return Option(*command.get_option(name));
}

Option addFlag(CLI::App& command, const std::string& name, bool& value, const std::string& help) {
    return Option(*command.add_flag(name, value, help));
}

Option addText(CLI::App& command, const std::string& name, std::string& value,
               const std::string& help) {
    const auto take = [&value](const CLI::results_t& results) {
        value = unguarded(results.back());
        return true;
    };
    return Option(*command.add_option(name, take, help)->default_str(value));
}

void addArgument(CLI::App& command, const std::string& name, std::string& value,
                 const std::string& help) {
    addText(command, name, value, help).required().placeholder("");
}

Option addArguments(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                    const std::string& help) {
    return Option(*command.add_option(name, addingTo(values), help)
                       ->expected(0, CLI::detail::expected_max_vector_size)
                       ->allow_extra_args()
                       ->option_text(" "));
}

Option addTexts(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                const std::string& help) {
    return Option(*command.add_option(name, addingTo(values), help)
                       ->expected(1, CLI::detail::expected_max_vector_size)
                       ->allow_extra_args(false));
}

Option addNumber(CLI::App& command, const std::string& name, unsigned& value,
                 const std::string& help) {
    return Option(*command.add_option(name, value, help)->type_name("N"));
}

Option addNumber(CLI::App& command, const std::string& name, unsigned& value, unsigned least,
                 unsigned most, const std::string& help) {
    CLI::Validator range = CLI::Range(least, most);
    if (most == std::numeric_limits<unsigned>::max()) range.description("");
    return Option(*command.add_option(name, value, help)
                       ->check(range)
                       ->type_name("N")
                       ->capture_default_str());
}

Option addReal(CLI::App& command, const std::string& name, double& value, const std::string& help) {
    return Option(*command.add_option(name, value, help)->type_name("X"));
}

void addLineFormat(CLI::App& command, std::string& format, bool& zeroEnded) {
    addChoice(command, "-f,--format", format, {"text", "tsv", "json"},
              "How to write what is found");
    addZero(command, zeroEnded);
}

void addZero(CLI::App& command, bool& zeroEnded) {
    addFlag(command, "-z,--zero", zeroEnded, "Lines end with a NUL, in and out");
}

Option addChoice(CLI::App& command, const std::string& name, std::string& value,
                 const std::vector<std::string>& choices, const std::string& help) {
    return Option(*command.add_option(name, value, help)
                       ->check(CLI::IsMember(choices))
                       ->type_name("WORD")
                       ->capture_default_str());
}

}  // namespace dictool
