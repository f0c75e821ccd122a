#include "Filter.h"

#include <algorithm>
#include <thread>

namespace dictool {

namespace {

constexpr unsigned kMaxThreads = 256;

int filter(const FilterOptions& options, Lines& lines, Output& output,
           const MakeImageWork& makeWork) {
    const Handle handle(options.image);
    const unsigned cores = std::max(std::thread::hardware_concurrency(), 1u);
    const unsigned threads = options.threads == 0 ? cores : options.threads;
    const bool found = runLines(lines, output, threads, [&] { return makeWork(handle); });
    output.finish();
    if (lines.failed()) return kTrouble;
    return found || options.exitZero ? kDone : kNone;
}

}  // namespace

void addFilterOptions(CLI::App& command, FilterOptions& options) {
    addChoice(command, "-f,--format", options.format, {"text", "tsv", "json"},
              "How to write what is found");
    command.add_flag("-z,--zero", options.zeroEnded, "Lines end with a NUL, in and out");
    command.add_option("-j,--jobs", options.threads, "Threads; 0 for one a core")
        ->check(CLI::Range(0u, kMaxThreads))
        ->type_name("N")
        ->capture_default_str();
    command.add_flag("--line-buffered", options.lineBuffered,
                     "Answer every line at once, as is done on a terminal");
    command.add_flag("--exit-zero", options.exitZero,
                     "Exit with 0 when nothing is found, too, for hosts that take 1 for a failure");
}

int filterFiles(const FilterOptions& options, const std::vector<std::string>& files,
                const MakeImageWork& makeWork) {
    Output output;
    Lines lines(files, options.end(), options.lineBuffered || output.isTerminal());
    return filter(options, lines, output, makeWork);
}

int filterTexts(const FilterOptions& options, const std::vector<std::string>& texts,
                const MakeImageWork& makeWork) {
    constexpr char kEnd = '\0';
    std::string joined;
    for (const std::string& text : texts) joined.append(text) += kEnd;
    Output output;
    Lines lines(joined, kEnd);
    return filter(options, lines, output, makeWork);
}

}  // namespace dictool
