#include "Output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "Descriptor.h"
#include "Report.h"

namespace dictool {

namespace {

constexpr std::size_t kPieceBytes = 64 * 1024;
constexpr mode_t kNewFileMode = 0666;
constexpr int kClosed = -1;

Failure cannotWrite(const std::string& name) {
    return systemFailure(name, "cannot-write", "check that the folder exists and has room");
}

}  // namespace

Output::Output() : m_name("standard output"), m_descriptor(STDOUT_FILENO) {}

Output::Output(const std::string& name) : Output() {
    if (name == "-") return;
    m_name = name;
    m_descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kNewFileMode);
    if (m_descriptor < 0) throw cannotWrite(m_name);
}

Output::~Output() {
    if (m_descriptor > STDERR_FILENO) ::close(m_descriptor);
}

void Output::add(std::string_view text) {
    m_gathered += text;
    if (m_gathered.size() >= kPieceBytes) write({});
}

void Output::write(std::string_view text) {
    writeThrough(m_gathered);
    m_gathered.clear();
    writeThrough(text);
}

void Output::finish() {
    write({});
    const int descriptor = m_descriptor;
    m_descriptor = kClosed;
    if (::close(descriptor) != 0) throw cannotWrite(m_name);
}

bool Output::isTerminal() const {
    return isatty(m_descriptor) != 0;
}

void Output::writeThrough(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = Dictionary::callUninterrupted(
            [&] { return ::write(m_descriptor, text.data(), text.size()); });
        if (written < 0) {
            if (errno == EPIPE) throw ClosedPipe{};
            throw cannotWrite(m_name);
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

void print(std::string_view text) {
    Output output;
    output.write(text);
    output.finish();
}

}  // namespace dictool
