// build and lint: make an image of a source, or only report what is wrong with it.

#include <sys/stat.h>
#include <unistd.h>

#include <limits>

#include "Command.h"
#include "Dictionary.hpp"
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
    bool folded = false;
    bool quiet = false;
    bool progress = false;
};

constexpr char kDetails[] =
    R"(A source has one line per record: a key, a tab, data fields separated by tabs. SOURCE may be
a pipe, or - for standard input. The key \n stands for a newline. If a key comes more than
once, its data is joined with ";". In separators, \t and \n stand for a tab and a newline, and
a backslash with three digits for the byte with that decimal number.

Problems are reported with the number of the record and of the byte in it. --lenient turns an
empty key, illegal UTF-8, a carriage return at the end of a line and a byte-order mark into
warnings; --windows drops the last two. A source without records is an error unless
--allow-empty is given.
)";

constexpr char kStatusDetails[] = "\n\nExit status: 0 done; 2 an error; 130 ended by a signal.";

constexpr char kBuildDetails[] = R"(
The image appears under its name when it is complete. Until then, and if the build fails or is
interrupted, the old file stays. IMAGE may be - for standard output, unless that is a terminal.)";

constexpr char kLintDetails[] = R"(
Nothing is written, and the exit status is that of building. A field after the first that
begins with ";" gets a warning, because it looks like the data of a repeated key.)";

// One run of the library's build, and what it reports.
struct Build {
    const BuildOptions& options;
    const std::string& image;  // a file, "-" or, for a check, nothing
    Progress progress;
    std::uint64_t reported = 0;

    bool writesFile() const { return !image.empty() && image != "-"; }
};

void onProblem(void* context, const DictionaryError* problem) {
    Build& build = *static_cast<Build*>(context);
    ++build.reported;
    if (problem->severity == DICTIONARY_WARNING && build.options.quiet) return;
    const bool ofImage = problem->file == DICTIONARY_FILE_IMAGE;
    const Failure failure =
        failureOf(*problem, ofImage ? build.options.image : build.options.source);
    build.progress.clear();
    report(static_cast<DictionarySeverity>(problem->severity), failure.place, failure.code,
           failure.text);
}

// After placement there is an unfinished file to clean up, so interrupts are only noted.
bool onProgress(void* context, int stage, std::uint64_t done, std::uint64_t total) {
    constexpr const char* kStages[] = {"reading", "placing", "writing"};
    Build& build = *static_cast<Build*>(context);
    if (stage == DICTIONARY_STAGE_PLACE && done == total && build.writesFile()) noteInterrupts();
    build.progress.update(kStages[stage], done, total);
    return !interrupted();
}

// A separator in the library's notation, which names a byte only by its number.
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
// is none, as for a socket. A named pipe has none, because opening it again waits for a writer.
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

// The source as the library takes it; `bytes` keeps what only dictool can read.
DictionarySource sourceOf(const std::string& name, Buffer& bytes) {
    DictionarySource source = {};
    source.size = sizeof source;
    if (!name.empty()) {
        source.path = name.c_str();
        return source;
    }
    bytes = readWhole("-");
    source.bytes = {bytes.size() == 0 ? "" : bytes.data(), bytes.size()};
    return source;
}

int callLibrary(Build& build, const DictionaryTarget& target, DictionaryBuildReport& report) {
    const BuildOptions& given = build.options;
    const std::string fieldSeparator = notationOf(given.fieldSeparator);
    const std::string recordSeparator = notationOf(given.recordSeparator);
    DictionaryBuildOptions options = {};
    options.size = sizeof options;
    options.fieldSeparator = fieldSeparator.c_str();
    options.recordSeparator = recordSeparator.c_str();
    options.problemLimit = given.maxProblems;
    options.lenient = given.lenient;
    options.fromWindows = given.windows;
    options.allowEmpty = given.allowEmpty;
    options.folded = given.folded;
    options.onProblem = onProblem;
    options.onProgress = onProgress;
    options.context = &build;
    const std::string name = given.source == "-" ? nameOfInput() : given.source;
    Buffer bytes;
    const DictionarySource source = sourceOf(name, bytes);
    DictionaryError error;
    const int code = dictionaryBuildFrom(&source, &target, &options, &report, &error);
    const bool isUnreported =
        code != DICTIONARY_OK && code != DICTIONARY_STOPPED && build.reported == 0;
    if (isUnreported) throw failureOf(error, given.source);
    return code;
}

std::string summaryOf(const DictionaryBuildReport& report, const std::string& image) {
    const std::string records = std::to_string(report.records) + " records";
    if (image.empty()) return records;
    return image + ": " + std::to_string(report.keys) + " keys of " + records + ", " +
           std::to_string(report.imageBytes) + " bytes";
}

DictionaryTarget targetOf(const Build& build, dictionary::ImageBuffer& buffer) {
    DictionaryTarget target = {};
    target.size = sizeof target;
    if (build.writesFile()) target.path = build.image.c_str();
    if (build.image == "-") target.buffer = buffer.get();
    return target;
}

// A build of no image is a check.
int run(const BuildOptions& options, const std::string& image) {
    const bool showsProgress = !options.quiet && (options.progress || errorsOnTerminal());
    Build build{options, image, Progress(showsProgress)};
    const std::string interruption =
        build.writesFile() ? "interrupted; nothing was written to " + image : "interrupted";
    endWhenInterrupted((showsProgress ? "\n" : "") + messageOf(interruption));
    dictionary::ImageBuffer buffer;
    DictionaryBuildReport counts = {};
    counts.size = sizeof counts;
    const int code = callLibrary(build, targetOf(build, buffer), counts);
    build.progress.clear();
    if (counts.problems > build.reported) {
        remark(options.source + ": " + std::to_string(counts.problems - build.reported) +
               " more problems; --max-problems shows more of them");
    }
    if (code == DICTIONARY_STOPPED) remark(interruption);
    if (code != DICTIONARY_OK) return statusOf(code);
    if (image == "-") print(buffer.view());
    if (!options.quiet) remark(summaryOf(counts, image));
    return kDone;
}

int runBuild(const BuildOptions& options) {
    if (options.image == "-" && Output().isTerminal()) {
        throw Failure{
            kTrouble, {}, "usage", "an image cannot be written to a terminal; write it to a file"};
    }
    return run(options, options.image);
}

int runLint(const BuildOptions& options) {
    return run(options, "");
}

void addOptions(CLI::App& command, BuildOptions& options) {
    addFlag(command, "--lenient", options.lenient, "Report some errors as warnings");
    addFlag(command, "--windows", options.windows,
            "Drop carriage returns at the ends of lines, and a byte-order mark");
    addFlag(command, "--allow-empty", options.allowEmpty, "Accept a source without records");
    addFlag(command, "--fold", options.folded,
            "Fold case and width, in the keys and in whatever is looked up");
    addText(command, "--field-separator", options.fieldSeparator, "What separates fields")
        .placeholder("BYTES");
    addText(command, "--record-separator", options.recordSeparator, "What ends a record")
        .placeholder("BYTES");
    addNumber(command, "--max-problems", options.maxProblems, 1,
              std::numeric_limits<unsigned>::max(), "Report at most this many problems");
    addFlag(command, "-q,--quiet", options.quiet, "Report errors only");
    addFlag(command, "--progress", options.progress,
            "Show a progress bar even if standard error is not a terminal");
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
        addCommand(program, action, "lint", "Report what is wrong with a source",
                   std::string(kDetails) + kLintDetails + kStatusDetails, options, runLint);
    addArgument(lint, "SOURCE", options.source, "The source; - for standard input");
    addOptions(lint, options);
}

}  // namespace dictool
