// build and lint: from a source to an image, or only to what is wrong with the source.

#include <atomic>
#include <csignal>

#include "Command.h"
#include "DATChecked.h"
#include "File.h"
#include "Progress.h"
#include "Report.h"

namespace dictool {

namespace {

struct BuildOptions {
    std::string source;
    std::string image;
    std::string fieldSeparator = "\\009";
    std::string recordSeparator = "\\010";
    unsigned maxProblems = 100;
    bool lenient = false;
    bool quiet = false;
    bool progress = false;
};

constexpr char kDetails[] =
    "A source has a record a line: a key, a tab, data fields set apart by tabs. SOURCE may be a\n"
    "pipe, or - for standard input. The key \\n stands for a newline. Data of a key that comes\n"
    "more than once is joined with \";\". In separators, a backslash and three digits stand for\n"
    "the byte of that decimal number.\n"
    "\nProblems are told with the number of the record and of the byte in it. --lenient makes\n"
    "warnings of an empty key, illegal UTF-8, a carriage return at the end of a line and a\n"
    "byte-order mark. A key with a character above U+FFFF is refused: left out, exit status 3.\n";

constexpr char kBuildDetails[] =
    "\nThe image appears under its name when it is complete; until then, and if the build fails "
    "or\n"
    "is interrupted, what stood there before stays.";

constexpr char kLintDetails[] = "The exit status is that of building; nothing is written.";

std::atomic<bool> interrupted{false};

// One run of the library's build, and what it is told.
struct Build {
    const BuildOptions& options;
    Progress progress;
    std::uint64_t told = 0;
};

void onProblem(void* context, const DictionaryProblem* problem) {
    Build& build = *static_cast<Build*>(context);
    ++build.told;
    const bool warning = problem->severity == DICTIONARY_WARNING;
    if (warning && build.options.quiet) return;
    const bool ofImage = problem->code == DICTIONARY_PROBLEM_CANNOT_WRITE ||
                         problem->code == DICTIONARY_PROBLEM_IMAGE_TOO_LARGE;
    const std::string& file = ofImage ? build.options.image : build.options.source;
    build.progress.clear();
    report(warning ? Severity::kWarning : Severity::kError, {file, problem->line, problem->column},
           dictionaryProblemName(problem->code), problem->text);
}

bool onProgress(void* context, int stage, std::uint64_t done, std::uint64_t total) {
    constexpr const char* kStages[] = {"reading", "placing", "writing"};
    static_cast<Build*>(context)->progress.update(kStages[stage], done, total);
    return !interrupted;
}

// The build stops where it next tells its progress; a second signal ends the program at once.
void stopWhenInterrupted() {
    struct sigaction action = {};
    action.sa_handler = [](int) { interrupted = true; };
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::sigaction(signal, &action, nullptr);
}

int callLibrary(Build& build, const char* image, DictionaryBuildReport& report) {
    const BuildOptions& given = build.options;
    DictionaryBuildOptions options = {};
    options.size = sizeof options;
    options.fieldSeparator = given.fieldSeparator.c_str();
    options.recordSeparator = given.recordSeparator.c_str();
    options.problemLimit = given.maxProblems;
    options.lenient = given.lenient;
    options.onProblem = onProblem;
    options.onProgress = onProgress;
    options.context = &build;
    if (given.source != "-") return dictionaryBuild(given.source.c_str(), image, &options, &report);
    const std::string source = readWhole(given.source);
    return dictionaryBuildBytes(source.data(), source.size(), image, &options, &report);
}

std::string summaryOf(const DictionaryBuildReport& report, const char* image) {
    std::string text = std::to_string(report.records) + " records";
    if (image != nullptr) {
        text = std::string(image) + ": " + std::to_string(report.keys) + " keys of " + text + ", " +
               std::to_string(report.imageBytes) + " bytes";
    }
    if (report.refused > 0) text += ", " + std::to_string(report.refused) + " keys refused";
    return text;
}

int run(const BuildOptions& options, const char* image) {
    stopWhenInterrupted();
    Build build{options, Progress(!options.quiet && (options.progress || errorsOnTerminal()))};
    DictionaryBuildReport counts = {};
    counts.size = sizeof counts;
    const int result = callLibrary(build, image, counts);
    build.progress.clear();
    if (counts.problems > build.told) {
        remark(options.source + ": " + std::to_string(counts.problems - build.told) +
               " more problems; --max-problems shows more of them");
    }
    const bool done = result == DICTIONARY_BUILT || result == DICTIONARY_BUILT_WITHOUT_SOME;
    if (done && !options.quiet) remark(summaryOf(counts, image));
    // By DictionaryBuildResult.
    constexpr Status kStatuses[] = {kDone, kRefused, kTrouble, kInterrupted};
    return kStatuses[result];
}

int runBuild(const BuildOptions& options) {
    return run(options, options.image.c_str());
}

int runLint(const BuildOptions& options) {
    return run(options, nullptr);
}

void addOptions(CLI::App& command, BuildOptions& options) {
    command.add_flag("--lenient", options.lenient, "Warn of what can be lived with");
    addText(command, "--field-separator", options.fieldSeparator, "Ends a field")
        .type_name("BYTES");
    addText(command, "--record-separator", options.recordSeparator, "Ends a record")
        .type_name("BYTES");
    command.add_option("--max-problems", options.maxProblems, "Tell no more problems than this")
        ->check(CLI::PositiveNumber)
        ->type_name("N")
        ->capture_default_str();
    command.add_flag("-q,--quiet", options.quiet, "Tell errors only");
    command.add_flag("--progress", options.progress,
                     "Show a progress bar even where standard error is no terminal");
}

}  // namespace

void defineBuild(CLI::App& program, Action& action) {
    static BuildOptions options;
    CLI::App& build = addCommand(program, action, "build", "Build an image from a source",
                                 std::string(kDetails) + kBuildDetails, options, runBuild);
    addArgument(build, "SOURCE", options.source, "The source; - for standard input");
    addArgument(build, "IMAGE", options.image, "The image to write");
    addOptions(build, options);

    CLI::App& lint = addCommand(program, action, "lint", "Tell what is wrong with a source",
                                std::string(kDetails) + kLintDetails, options, runLint);
    addArgument(lint, "SOURCE", options.source, "The source; - for standard input");
    addOptions(lint, options);
}

}  // namespace dictool
