#include "Pipeline.h"

#include <atomic>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace dictool {

namespace {

// Every thread reads a block, works on it, waits for its turn and writes. So no thread holds more
// than one block, and only the thread whose turn it is writes.
class Pipeline {
public:
    Pipeline(Lines& lines, Output& output) : m_lines(lines), m_output(output) {}

    // Run by every thread.
    void run(LineWork& work) noexcept {
        try {
            Block block;
            std::string out;
            std::uint64_t turn;
            do {
                if (!read(block, turn)) return;
                out.clear();
                forEachLine(block, m_lines.end(), [&](std::string_view line, std::uint64_t number) {
                    if (work.take(line, number, out)) m_found = true;
                });
                if (work.endBlock(out)) m_found = true;
            } while (write(turn, out));
        } catch (...) {
            stop(std::current_exception());
        }
    }

    // Called after all threads have ended.
    bool result() const {
        if (m_failure) std::rethrow_exception(m_failure);
        return m_found;
    }

private:
    bool read(Block& block, std::uint64_t& turn) {
        const std::lock_guard<std::mutex> reading(m_reading);
        turn = m_blocksRead;
        if (m_stopped || !m_lines.next(block)) return false;
        ++m_blocksRead;
        return true;
    }

    bool write(std::uint64_t turn, std::string_view out) {
        std::unique_lock<std::mutex> writing(m_writing);
        m_turnChanged.wait(writing, [&] { return m_blocksWritten == turn || m_stopped; });
        if (m_stopped) return false;
        m_output.write(out);
        ++m_blocksWritten;
        m_turnChanged.notify_all();
        return true;
    }

    // Keeps the first failure and lets every thread end.
    void stop(std::exception_ptr failure) {
        const std::lock_guard<std::mutex> writing(m_writing);
        if (!m_failure) m_failure = failure;
        m_stopped = true;
        m_turnChanged.notify_all();
    }

    Lines& m_lines;
    Output& m_output;
    std::mutex m_reading;
    std::uint64_t m_blocksRead = 0;
    std::mutex m_writing;
    std::condition_variable m_turnChanged;
    std::uint64_t m_blocksWritten = 0;
    std::exception_ptr m_failure;
    std::atomic<bool> m_stopped{false};
    std::atomic<bool> m_found{false};
};

}  // namespace

bool runLines(Lines& lines, Output& output, unsigned threads, const MakeLineWork& makeWork) {
    Pipeline pipeline(lines, output);
    const auto run = [&] { pipeline.run(*makeWork()); };
    std::vector<std::thread> others(threads - 1);
    try {
        for (std::thread& thread : others) thread = std::thread(run);
    } catch (const std::system_error&) {
        // The system allows no more threads. Those that have begun do the work.
    }
    run();
    for (std::thread& thread : others) {
        if (thread.joinable()) thread.join();
    }
    return pipeline.result();
}

}  // namespace dictool
