#include "File.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Descriptor.h"

namespace dictool {

File::File(const std::string& name)
    : m_name(name),
      m_descriptor(name == "-" ? STDIN_FILENO : ::open(name.c_str(), O_RDONLY | O_CLOEXEC)) {
    if (m_descriptor < 0) throw failure();
}

File::~File() {
    if (m_descriptor != STDIN_FILENO) ::close(m_descriptor);
}

bool File::readMore(Buffer& bytes, std::size_t room) {
    char* const begin = bytes.room(room);
    const ssize_t count =
        Dictionary::callUninterrupted([&] { return ::read(m_descriptor, begin, room); });
    if (count < 0) throw failure();
    bytes.take(static_cast<std::size_t>(count));
    return count > 0;
}

Failure File::failure() const {
    return systemFailure(m_name, "cannot-read", "check its name and that you may read it");
}

bool isOneFile(const std::string& name, const std::string& other) {
    struct stat status, otherStatus;
    return ::stat(name.c_str(), &status) == 0 && ::stat(other.c_str(), &otherStatus) == 0 &&
           status.st_dev == otherStatus.st_dev && status.st_ino == otherStatus.st_ino;
}

Buffer readWhole(const std::string& name) {
    constexpr std::size_t kRoom = 1 << 20;
    File file(name);
    Buffer bytes;
    while (file.readMore(bytes, kRoom)) {
    }
    return bytes;
}

}  // namespace dictool
