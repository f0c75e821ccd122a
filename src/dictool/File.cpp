#include "File.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace dictool {

File::File(const std::string& name)
    : m_name(name),
      m_descriptor(name == "-" ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (m_descriptor < 0) throw failure();
}

File::~File() {
    if (m_descriptor != STDIN_FILENO) ::close(m_descriptor);
}

bool File::readMore(std::string& bytes, std::size_t room) {
    const std::size_t before = bytes.size();
    bytes.resize(before + room);
    const ssize_t count = ::read(m_descriptor, &bytes[before], room);
    bytes.resize(before + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (count < 0 && errno == EINTR) throw Interrupted{};
    if (count < 0) throw failure();
    return count > 0;
}

Failure File::failure() const {
    return systemFailure(m_name, "cannot-read", "check its name and that you may read it");
}

std::string readWhole(const std::string& name) {
    constexpr std::size_t kFirstRoom = 1 << 20;
    File file(name);
    std::string bytes;
    while (file.readMore(bytes, std::max(bytes.size(), kFirstRoom))) {
    }
    return bytes;
}

}  // namespace dictool
