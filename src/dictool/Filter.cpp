#include "Filter.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include "Dictionaries.h"

namespace dictool {

namespace {

constexpr unsigned kMaxThreads = 256;
constexpr char kReturn = '\r';
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool endsInReturn(std::string_view line) {
    return !line.empty() && line.back() == kReturn;
}

// Removes from lines what Windows adds to them.
class WindowsWork : public LineWork {
public:
    explicit WindowsWork(std::unique_ptr<LineWork> work) : m_work(std::move(work)) {}

    bool take(std::string_view line, std::uint64_t number, std::string& out) override {
        if (line.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
            line.remove_prefix(kByteOrderMark.size());
        }
        if (endsInReturn(line)) line.remove_suffix(1);
        return m_work->take(line, number, out);
    }

    bool endBlock(std::string& out) override { return m_work->endBlock(out); }

private:
    std::unique_ptr<LineWork> m_work;
};

// Notices lines that Windows wrote.
class NoticingWork : public LineWork {
public:
    NoticingWork(std::unique_ptr<LineWork> work, std::atomic<bool>& sawReturn)
        : m_work(std::move(work)), m_sawReturn(sawReturn) {}

    bool take(std::string_view line, std::uint64_t number, std::string& out) override {
        if (endsInReturn(line)) m_sawReturn.store(true, std::memory_order_relaxed);
        return m_work->take(line, number, out);
    }

    bool endBlock(std::string& out) override { return m_work->endBlock(out); }

private:
    std::unique_ptr<LineWork> m_work;
    std::atomic<bool>& m_sawReturn;
};

int filter(const FilterOptions& options, Lines& lines, Output& output, const Prepare& prepare) {
    const Dictionaries dictionaries(options.image, options.moreImages);
    const MakeLineWork makeWork = prepare(dictionaries.get());
    const unsigned cores = std::max(std::thread::hardware_concurrency(), 1u);
    const unsigned threads = options.threads == 0 ? cores : options.threads;
    std::atomic<bool> sawReturn{false};
    const auto makeLineWork = [&]() -> std::unique_ptr<LineWork> {
        if (options.windows) return std::make_unique<WindowsWork>(makeWork());
        return std::make_unique<NoticingWork>(makeWork(), sawReturn);
    };
    const bool found = runLines(lines, output, threads, makeLineWork);
    output.finish();
    if (!found && sawReturn) {
        remark("nothing was found, and lines end in a carriage return; try --windows");
    }
    if (lines.failed()) return kTrouble;
    return found || options.exitZero ? kDone : kNone;
}

}  // namespace

void addMoreImages(CLI::App& command, std::vector<std::string>& images) {
    addTexts(command, "-D,--dictionary", images,
             "Another image, searched as one with IMAGE; the last image that has a key wins")
        .placeholder("IMAGE");
}

void addFilterOptions(CLI::App& command, FilterOptions& options) {
    addFlag(command, "--windows", options.windows,
            "Drop a carriage return at the end of a line and a byte-order mark at its start");
    addNumber(command, "-j,--jobs", options.threads, 0, kMaxThreads,
              "Number of threads; 0 for one per core");
    addFlag(command, "--line-buffered", options.lineBuffered,
            "Answer each line at once, as on a terminal");
    addFlag(command, "--exit-zero", options.exitZero,
            "Exit with 0 even if nothing is found, for callers that take 1 for a failure");
}

int filterFiles(const FilterOptions& options, const std::vector<std::string>& files,
                const Prepare& prepare) {
    Output output;
    Lines lines(files, options.end(), options.lineBuffered || output.isTerminal());
    return filter(options, lines, output, prepare);
}

int filterTexts(const FilterOptions& options, const std::vector<std::string>& texts,
                const Prepare& prepare) {
    constexpr char kEnd = '\0';
    std::string joined;
    for (const std::string& text : texts) joined.append(text) += kEnd;
    Output output;
    Lines lines(joined, kEnd);
    return filter(options, lines, output, prepare);
}

}  // namespace dictool
