#include <csignal>
#include <exception>
#include <new>

#include "Command.h"
#include "Dictionary.hpp"
#include "Help.h"
#include "Output.h"
#include "Report.h"

namespace dictool {

namespace {

constexpr DefineCommand kCommands[] = {defineBuild,      defineSearch, defineSegment, defineReplace,
                                       defineLookup,     defineKeys,   defineDump,    defineStat,
                                       defineVerify,     defineDiff,   defineView,    defineManual,
                                       defineCompletion, defineHelp};

constexpr char kDetails[] =
    "Exit status: 0 found or done; 1 nothing found, or different; 2 wrong usage, or a file\n"
    "cannot be read or written; 4 not a sound image; 130 a build was ended by a signal; 141 the\n"
    "output has no reader.\n"
    "'dictool help COMMAND' explains a command.";

int run(int count, char** arguments) {
    const std::shared_ptr<CLI::App> program = makeProgram(
        "dictool", "Builds dictionary images, searches texts with them and looks into them.",
        kDetails, dictionaryVersion());
    Action action;
    for (const DefineCommand define : kCommands) define(*program, action);
    const std::vector<std::string> given = guardedArguments(count, arguments);
    checkCommand(*program, given);
    const std::string page = parse(*program, given);
    if (page.empty()) return action();
    print(page);
    return kDone;
}

int runReporting(int count, char** arguments) {
    try {
        return run(count, arguments);
    } catch (const Failure& failure) {
        report(failure);
        return failure.status;
    } catch (const dictionary::Error& error) {
        const char* const file = error.record().path;
        const Failure failure = failureOf(error.record(), file == nullptr ? "" : file);
        report(failure);
        return failure.status;
    } catch (const ClosedPipe&) {
        return kClosedPipe;
    } catch (const std::bad_alloc&) {
        report(DICTIONARY_ERROR, {}, "no-memory",
               "there is not enough memory; free some or use fewer threads");
    } catch (const std::exception& error) {
        report(DICTIONARY_ERROR, {}, "internal", error.what());
    }
    return kTrouble;
}

}  // namespace

}  // namespace dictool

int main(int count, char** arguments) {
    // With these ignored, writing to a closed pipe, or beyond the limit of a file's size, fails.
    // Every command notices that and unwinds.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    return dictool::runReporting(count, arguments);
}
