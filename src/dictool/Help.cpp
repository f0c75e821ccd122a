// help: the same as --help.

#include "Help.h"

#include <algorithm>
#include <numeric>

#include "Listing.h"
#include "Output.h"
#include "Report.h"

namespace dictool {

namespace {

struct HelpOptions {
    const CLI::App* program = nullptr;
    std::string command;
};

// How many letters must be inserted, deleted or changed to turn one word into the other: the
// Levenshtein distance, by the Wagner-Fischer table, of which only one row is kept.
std::size_t distanceOf(const std::string& word, const std::string& other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < word.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t changed = diagonal + (word[i] == other[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

[[noreturn]] void refuse(const CLI::App& program, const std::string& name) {
    constexpr std::size_t kLikely = 3;
    std::string nearest;
    std::size_t least = kLikely;
    for (const CLI::App* command : commandsOf(program)) {
        const std::size_t distance = distanceOf(name, nameOf(*command));
        if (distance < least) nearest = nameOf(*command);
        least = std::min(least, distance);
    }
    const std::string question =
        nearest.empty() ? "see 'dictool --help'" : "did you mean '" + nearest + "'?";
    throw Failure{kTrouble, {}, "usage", "there is no command '" + name + "'; " + question};
}

int run(const HelpOptions& options) {
    const CLI::App& program = *options.program;
    const CLI::App* const shown =
        options.command.empty() ? &program : findCommand(program, options.command);
    if (shown == nullptr) refuse(program, options.command);
    print(helpOf(program, *shown));
    return kDone;
}

}  // namespace

void checkCommand(const CLI::App& program, const std::vector<std::string>& arguments) {
    if (arguments.empty() || arguments[0].empty() || arguments[0].front() == '-') return;
    if (findCommand(program, arguments[0]) == nullptr) refuse(program, arguments[0]);
}

void defineHelp(CLI::App& program, Action& action) {
    static HelpOptions options;
    options.program = &program;
    CLI::App& command = addCommand(program, action, "help", "Explain a command",
                                   "Without COMMAND, explains the program.", options, run);
    hide(command);
    addText(command, "COMMAND", options.command, "The command");
}

}  // namespace dictool
