#include "SourceText.h"

#include <fcntl.h>
#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "SystemFailure.h"

namespace Dictionary {

namespace {

[[noreturn]] void failToRead(int error) {
    throw SystemFailure{SystemFailure::kSource, error};
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
    // Opening does not wait for a pipe's writer; waitForBytes does.
    constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
    m_file = Descriptor(callUninterrupted([&] { return ::open(m_fileName, kFlags); }));
    if (!m_file.isOpen()) failToRead(errno);
    struct stat status;
    if (fstat(m_file.number(), &status) == 0) m_status = status;
}

// As the system knows it; 0 for a pipe.
std::uint64_t FileText::size() const {
    return isRegular() ? static_cast<std::uint64_t>(m_status->st_size) : 0;
}

// Reads a stretch; a shorter one only at the end of the source. Returns its size.
std::size_t FileText::fill(char* room) {
    std::size_t filled = 0;
    while (filled < kStretchBytes) {
        if (!isRegular()) waitForBytes();
        const ssize_t size = callUninterrupted(
            [&] { return read(m_file.number(), room + filled, kStretchBytes - filled); });
        if (size == 0) break;
        if (size < 0 && errno != EAGAIN) failToRead(errno);
        if (size > 0) filled += static_cast<std::size_t>(size);
    }
    return filled;
}

// Returns when there is something to read, or when nothing more can come.
void FileText::waitForBytes() const {
    constexpr int kMilliseconds = 50;
    pollfd waiting = {m_file.number(), POLLIN, 0};
    for (;;) {
        const int ready = poll(&waiting, 1, kMilliseconds);
        if (ready > 0) return;
        if (ready < 0 && errno != EINTR) failToRead(errno);
        m_wait();
    }
}

}  // namespace Dictionary
