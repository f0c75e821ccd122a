#include <algorithm>
#include <csignal>
#include <exception>
#include <new>

#include "Command.h"
#include "DATChecked.h"
#include "Output.h"
#include "Report.h"

namespace dictool {

namespace {

constexpr DefineCommand kCommands[] = {defineBuild, defineSearch, defineSegment,   defineLookup,
                                       defineDump,  defineStat,   defineVerify,    defineDiff,
                                       defineView,  defineManual, defineCompletion};

constexpr char kDetails[] =
    "Exit status: 0 found or done; 1 nothing found, or different; 2 wrong usage, or a file\n"
    "cannot be read or written; 3 done, but keys were refused; 4 not a sound image.\n"
    "'dictool COMMAND --help' tells more about a command.";

int refuseUsage(const CLI::App& program, const CLI::ParseError& error) {
    const std::vector<CLI::App*> chosen = program.get_subcommands();
    const std::string name = chosen.empty() ? "dictool" : "dictool " + chosen[0]->get_name();
    report(Severity::kError, {}, "usage",
           std::string(error.what()) + "; see '" + name + " --help'");
    return kTrouble;
}

int run(int count, char** arguments) {
    CLI::App program("Builds dictionary images, searches texts with them and looks into them.",
                     "dictool");
    program.footer(kDetails);
    program.set_version_flag("--version", std::string("dictool ") + dictionaryVersion());
    program.require_subcommand(1);
    Action action;
    for (const DefineCommand define : kCommands) define(program, action);
    try {
        std::vector<std::string> given = guardedArguments(count, arguments);
        std::reverse(given.begin(), given.end());
        program.parse(std::move(given));
    } catch (const CLI::CallForHelp&) {
        print(program.help());
        return kDone;
    } catch (const CLI::CallForVersion& version) {
        print(std::string(version.what()) + "\n");
        return kDone;
    } catch (const CLI::ParseError& error) {
        return refuseUsage(program, error);
    }
    return action();
}

int runReporting(int count, char** arguments) {
    try {
        return run(count, arguments);
    } catch (const Failure& failure) {
        report(failure);
        return failure.status;
    } catch (const ClosedPipe&) {
        return kClosedPipe;
    } catch (const Interrupted&) {
        return kInterrupted;
    } catch (const std::bad_alloc&) {
        report(Severity::kError, {}, "no-memory",
               "memory is short; free some or use fewer threads");
    } catch (const std::exception& error) {
        report(Severity::kError, {}, "internal", error.what());
    }
    return kTrouble;
}

}  // namespace

}  // namespace dictool

int main(int count, char** arguments) {
    // Writing to a closed pipe fails then, which every command notices and unwinds from.
    std::signal(SIGPIPE, SIG_IGN);
    return dictool::runReporting(count, arguments);
}
