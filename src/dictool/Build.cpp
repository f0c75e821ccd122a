// build and lint: from a source to an image, or only to what is wrong with the source.

#include <sys/stat.h>
#include <unistd.h>

#include <limits>
#include <optional>

#include "Command.h"
#include "DATChecked.h"
#include "File.h"
#include "Interrupt.h"
#include "Output.h"
#include "Progress.h"
#include "Report.h"

namespace dictool {

namespace {

struct BuildOptions {
    std::string source;
    std::string image;
    std::string fieldSeparator = "\\t";
    std::string recordSeparator = "\\n";
    unsigned maxProblems = 100;
    bool lenient = false;
    bool windows = false;
    bool allowEmpty = false;
    bool quiet = false;
    bool progress = false;
};

constexpr char kDetails[] =
    "A source has one line per record: a key, a tab, data fields separated by tabs. SOURCE may be\n"
    "a pipe, or - for standard input. The key \\n stands for a newline. Data of a key that comes\n"
    "more than once is joined with \";\". In separators, \\t and \\n stand for a tab and a "
    "newline,\n"
    "a backslash and three digits for the byte of that decimal number.\n"
    "\nProblems are reported with the number of the record and of the byte in it. --lenient makes\n"
    "warnings of an empty key, illegal UTF-8, a carriage return at the end of a line and a\n"
    "byte-order mark; --windows reads the last two as what they are. A source without records is\n"
    "an error unless --allow-empty is given.\n";

constexpr char kStatusDetails[] =
    "\n\nExit status: 0 done; 2 an error; 3 done, but keys with a character above U+FFFF were "
    "left\n"
    "out; 130 ended by a signal.";

constexpr char kBuildDetails[] =
    "\nThe image appears under its name when it is complete. Until then, and if the build fails "
    "or\n"
    "is interrupted, what was there before stays. IMAGE may be - for standard output, if that is\n"
    "no terminal.";

constexpr char kLintDetails[] =
    "\nNothing is written, and the exit status is that of building. A field that begins with "
    "\";\"\n"
    "after another one gets a warning, as it looks like data of a key that comes twice.";

// One run of the library's build, and what it is told.
struct Build {
    const BuildOptions& options;
    Progress progress;
    std::optional<Output> output;  // for an image that goes to standard output
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

// After the last step of placement there is an unfinished file to clean up.
bool onProgress(void* context, int stage, std::uint64_t done, std::uint64_t total) {
    constexpr const char* kStages[] = {"reading", "placing", "writing"};
    Build& build = *static_cast<Build*>(context);
    if (stage == DICTIONARY_STAGE_PLACE && done == total && !build.output) noteInterrupts();
    build.progress.update(kStages[stage], done, total);
    return !interrupted();
}

bool onImage(void* context, const void* bytes, std::size_t size) {
    static_cast<Build*>(context)->output->write({static_cast<const char*>(bytes), size});
    return true;
}

// The notation of the library, which knows a byte by its number only.
std::string notationOf(const std::string& separator) {
    constexpr struct {
        const char* escape;
        const char* number;
    } kEscapes[] = {{"\\t", "\\009"}, {"\\n", "\\010"}, {"\\r", "\\013"}};
    std::string notation = separator;
    for (const auto& [escape, number] : kEscapes) {
        for (std::size_t at = 0; (at = notation.find(escape, at)) != std::string::npos;) {
            notation.replace(at, 2, number);
        }
    }
    return notation;
}

// A name under which the library can open standard input and read on where it is; empty when there
// is none, as for a socket. A pipe with a name waits for a writer whenever it is opened.
std::string nameOfInput() {
    constexpr char kName[] = "/dev/stdin";
    constexpr std::string_view kUnnamedPipe = "pipe:";
    struct stat status;
    if (::fstat(STDIN_FILENO, &status) != 0 || ::access(kName, R_OK) != 0) return "";
    if (S_ISREG(status.st_mode)) return ::lseek(STDIN_FILENO, 0, SEEK_CUR) == 0 ? kName : "";
    char target[kUnnamedPipe.size()];
    const ssize_t size = ::readlink("/proc/self/fd/0", target, sizeof target);
    const bool isUnnamed = size > 0 && kUnnamedPipe == std::string_view(target, std::size_t(size));
    return S_ISFIFO(status.st_mode) && isUnnamed ? kName : "";
}

int callLibrary(Build& build, const char* image, DictionaryBuildReport& report) {
    const BuildOptions& given = build.options;
    const std::string fieldSeparator = notationOf(given.fieldSeparator);
    const std::string recordSeparator = notationOf(given.recordSeparator);
    DictionaryBuildOptions options = {};
    options.size = sizeof options;
    options.fieldSeparator = fieldSeparator.c_str();
    options.recordSeparator = recordSeparator.c_str();
    options.problemLimit = given.maxProblems;
    options.lenient = given.lenient;
    options.windows = given.windows;
    options.allowEmpty = given.allowEmpty;
    options.onProblem = onProblem;
    options.onProgress = onProgress;
    options.onImage = build.output ? onImage : nullptr;
    options.context = &build;
    const std::string name = given.source == "-" ? nameOfInput() : given.source;
    if (!name.empty()) return dictionaryBuild(name.c_str(), image, &options, &report);
    const Buffer source = readWhole(given.source);
    return dictionaryBuildBytes(source.data(), source.size(), image, &options, &report);
}

std::string summaryOf(const DictionaryBuildReport& report, const std::string& image) {
    std::string text = std::to_string(report.records) + " records";
    if (!image.empty()) {
        text = image + ": " + std::to_string(report.keys) + " keys of " + text + ", " +
               std::to_string(report.imageBytes) + " bytes";
    }
    if (report.refused > 0) text += ", " + std::to_string(report.refused) + " keys refused";
    return text;
}

// A build of no image is a check.
int run(const BuildOptions& options, const std::string& image) {
    const bool showsProgress = !options.quiet && (options.progress || errorsOnTerminal());
    const std::string interruption = image.empty() || image == "-"
                                         ? "interrupted"
                                         : "interrupted; nothing is written to " + image;
    endWhenInterrupted((showsProgress ? "\n" : "") + messageOf(interruption));
    Build build{options, Progress(showsProgress), {}};
    if (image == "-") build.output.emplace();
    DictionaryBuildReport counts = {};
    counts.size = sizeof counts;
    const int result =
        callLibrary(build, image.empty() || image == "-" ? nullptr : image.c_str(), counts);
    build.progress.clear();
    if (build.output) build.output->finish();
    if (counts.problems > build.told) {
        remark(options.source + ": " + std::to_string(counts.problems - build.told) +
               " more problems; --max-problems shows more of them");
    }
    if (result == DICTIONARY_STOPPED) remark(interruption);
    const bool done = result == DICTIONARY_BUILT || result == DICTIONARY_BUILT_WITHOUT_SOME;
    if (done && !options.quiet) remark(summaryOf(counts, image));
    // By DictionaryBuildResult.
    constexpr Status kStatuses[] = {kDone, kRefused, kTrouble, kInterrupted};
    return kStatuses[result];
}

int runBuild(const BuildOptions& options) {
    if (options.image == "-" && Output().isTerminal()) {
        throw Failure{kTrouble, {}, "usage", "an image is not for a terminal; write it to a file"};
    }
    return run(options, options.image);
}

int runLint(const BuildOptions& options) {
    return run(options, "");
}

void addOptions(CLI::App& command, BuildOptions& options) {
    command.add_flag("--lenient", options.lenient, "Warn of what can be lived with");
    command.add_flag("--windows", options.windows,
                     "Leave out carriage returns at the ends of lines, and a byte-order mark");
    command.add_flag("--allow-empty", options.allowEmpty, "Take a source without records");
    addText(command, "--field-separator", options.fieldSeparator, "Ends a field")
        .type_name("BYTES");
    addText(command, "--record-separator", options.recordSeparator, "Ends a record")
        .type_name("BYTES");
    command.add_option("--max-problems", options.maxProblems, "Report no more problems than this")
        ->check(CLI::Range(1u, std::numeric_limits<unsigned>::max()).description(""))
        ->type_name("N")
        ->capture_default_str();
    command.add_flag("-q,--quiet", options.quiet, "Report errors only");
    command.add_flag("--progress", options.progress,
                     "Show a progress bar even where standard error is no terminal");
}

}  // namespace

void defineBuild(CLI::App& program, Action& action) {
    static BuildOptions options;
    CLI::App& build =
        addCommand(program, action, "build", "Build an image from a source",
                   std::string(kDetails) + kBuildDetails + kStatusDetails, options, runBuild);
    addArgument(build, "SOURCE", options.source, "The source; - for standard input");
    addArgument(build, "IMAGE", options.image, "The image to write; - for standard output");
    addOptions(build, options);

    CLI::App& lint =
        addCommand(program, action, "lint", "Tell what is wrong with a source",
                   std::string(kDetails) + kLintDetails + kStatusDetails, options, runLint);
    addArgument(lint, "SOURCE", options.source, "The source; - for standard input");
    addOptions(lint, options);
}

}  // namespace dictool
