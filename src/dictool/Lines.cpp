#include "Lines.h"

#include <algorithm>

#include "Report.h"

namespace dictool {

namespace {

constexpr std::size_t kBlockBytes = 128 * 1024;

}  // namespace

Lines::Lines(std::vector<std::string> files, char end, bool eager)
    : m_files(std::move(files)), m_end(end), m_eager(eager) {
    if (m_files.empty()) m_files.emplace_back("-");
}

Lines::Lines(std::string_view text, char end) : m_end(end), m_rest(text) {}

bool Lines::next(Block& block) {
    block.firstLine = m_line;
    while (!nextOfFile(block.bytes)) {
        if (!openNext()) return false;
    }
    const std::string_view text = block.bytes.text();
    const auto ends = std::count(text.begin(), text.end(), m_end);
    const bool unended = text.back() != m_end;
    m_line += static_cast<std::uint64_t>(ends) + (unended ? 1 : 0);
    return true;
}

// False when the file has no more. The end of a line is looked for only in new bytes, so the time
// for a long line is in proportion to its length.
bool Lines::nextOfFile(Buffer& bytes) {
    std::swap(bytes, m_rest);
    m_rest.cutOff(0);
    std::size_t whole = 0;  // bytes up to the end of the last whole line
    while (whole == 0 || (bytes.size() < kBlockBytes && !m_eager)) {
        const std::size_t before = bytes.size();
        if (!readMore(bytes)) return bytes.size() > 0;
        const std::size_t last = bytes.text().substr(before).rfind(m_end);
        if (last != std::string_view::npos) whole = before + last + 1;
    }
    m_rest.append(bytes.text().substr(whole));
    bytes.cutOff(whole);
    return true;
}

// A file that fails counts as ended.
bool Lines::readMore(Buffer& bytes) {
    if (!m_file) return false;
    try {
        if (m_file->readMore(bytes, kBlockBytes)) return true;
    } catch (const Failure& failure) {
        m_failed = true;
        report(failure);
    }
    m_file.reset();
    return false;
}

// Opens the next file that can be opened; false when there is none.
bool Lines::openNext() {
    while (m_nextFile < m_files.size()) {
        try {
            m_file.emplace(m_files[m_nextFile++]);
            return true;
        } catch (const Failure& failure) {
            m_failed = true;
            report(failure);
        }
    }
    return false;
}

}  // namespace dictool
