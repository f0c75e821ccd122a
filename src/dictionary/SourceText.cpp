#include "SourceText.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "BuildProblems.h"

namespace Dictionary {

namespace {

[[noreturn]] void failToRead(int error) {
    throw SystemFailure{DICTIONARY_PROBLEM_CANNOT_READ, error};
}

// What the system knows of a file's size: nothing of a pipe's.
std::uint64_t sizeOf(const Descriptor& file) {
    struct stat status;
    if (fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    return static_cast<std::uint64_t>(status.st_size);
}

}  // namespace

std::string_view MemoryText::more(std::size_t unread) {
    if (m_bytes == nullptr && m_size > 0) failToRead(EFAULT);
    const std::size_t end = static_cast<std::size_t>(m_position);
    const std::size_t stretch = std::min(kStretchBytes, m_size - end);
    m_position += stretch;
    return std::string_view(m_bytes, m_size).substr(end - unread, unread + stretch);
}

std::string_view FileText::more(std::size_t unread) {
    if (!m_file.isOpen()) open();
    if (unread > 0) std::memmove(m_buffer.data(), m_buffer.data() + m_filled - unread, unread);
    if (m_buffer.size() < unread + kStretchBytes) m_buffer.resize(2 * (unread + kStretchBytes));
    const std::size_t added = m_ended ? 0 : fill(m_buffer.data() + unread);
    m_ended = added < kStretchBytes;
    m_filled = unread + added;
    m_position += added;
    return {m_buffer.data(), m_filled};
}

void FileText::open() {
    if (m_fileName == nullptr) failToRead(EFAULT);
    m_file = Descriptor(::open(m_fileName, O_RDONLY | O_CLOEXEC));
    if (!m_file.isOpen()) failToRead(errno);
    m_size = sizeOf(m_file);
}

// Reads a stretch, less at the source's end alone. Returns its size.
std::size_t FileText::fill(char* room) {
    std::size_t filled = 0;
    while (filled < kStretchBytes) {
        const ssize_t size = read(m_file.number(), room + filled, kStretchBytes - filled);
        if (size == 0) break;
        if (size < 0 && errno != EINTR) failToRead(errno);
        if (size > 0) filled += static_cast<std::size_t>(size);
    }
    return filled;
}

}  // namespace Dictionary
