#include "ImageFile.h"

#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <sys/random.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <utility>

#include "BuildProblems.h"

namespace Dictionary {

namespace {

constexpr mode_t kAccessBits = 0777;
constexpr mode_t kAccessBitsButGroup = 0707;
constexpr mode_t kNewFileBits = 0666;

[[noreturn]] void failToWrite(int error) {
    throw SystemFailure{DICTIONARY_PROBLEM_CANNOT_WRITE, error};
}

void require(bool done) {
    if (!done) failToWrite(errno);
}

// The folder of a path, with its slash; empty for the working directory.
std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

// Where a path leads when its last part is a symbolic link, which need not lead to a file.
std::string followLinks(std::string path) {
    constexpr int kMaxLinks = 40;
    for (int links = 0; links < kMaxLinks; ++links) {
        char target[PATH_MAX];
        const ssize_t size = readlink(path.c_str(), target, sizeof target);
        if (size < 0) return path;
        const std::string next(target, static_cast<std::size_t>(size));
        path = next.front() == '/' ? next : folderOf(path) + next;
    }
    failToWrite(ELOOP);
}

// A name that nobody guesses, short enough for every file system.
std::string temporaryName(const std::string& name) {
    constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyz234567";
    constexpr int kLetterBits = 5;
    constexpr std::size_t kRandomLetters = 12;
    constexpr std::size_t kMaxKept = NAME_MAX - kRandomLetters - 2;
    std::uint64_t random = 0;
    require(getrandom(&random, sizeof random, 0) == sizeof random);
    std::string made = "." + name.substr(0, kMaxKept) + ".";
    for (std::size_t i = 0; i < kRandomLetters; ++i) {
        made += kLetters[random % (sizeof kLetters - 1)];
        random >>= kLetterBits;
    }
    return made;
}

}  // namespace

ImageFile::ImageFile(const char* name) {
    const std::string path = followLinks(name);
    const std::string folder = folderOf(path);
    m_name = path.substr(folder.size());
    if (m_name.empty()) failToWrite(path.empty() ? ENOENT : EISDIR);
    m_folder =
        Descriptor(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    require(m_folder.isOpen());
    refuseWhatIsNoImage();
    require(faccessat(m_folder.number(), ".", W_OK | X_OK, AT_EACCESS) == 0);
}

// A device or a pipe would be replaced by a file, and a folder cannot be.
void ImageFile::refuseWhatIsNoImage() const {
    struct stat status;
    if (fstatat(m_folder.number(), m_name.c_str(), &status, 0) != 0) {
        require(errno == ENOENT);
        return;
    }
    if (S_ISDIR(status.st_mode)) failToWrite(EISDIR);
    if (!S_ISREG(status.st_mode)) failToWrite(EOPNOTSUPP);
    // A file protected from writing would not be protected from a rename.
    require(faccessat(m_folder.number(), m_name.c_str(), W_OK, AT_EACCESS) == 0);
}

ImageFile::~ImageFile() {
    if (!m_temporary.empty()) unlinkat(m_folder.number(), m_temporary.c_str(), 0);
}

void ImageFile::create() {
    createTemporary();
    takeOverAccess();
}

void ImageFile::createTemporary() {
    constexpr int kAttempts = 100;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        std::string name = temporaryName(m_name);
        m_file = Descriptor(openat(m_folder.number(), name.c_str(),
                                   O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileBits));
        if (m_file.isOpen()) {
            m_temporary = std::move(name);
            return;
        }
        require(errno == EEXIST);
    }
    failToWrite(EEXIST);
}

// Who may use the old image may use the new one, as far as the system lets us say so.
void ImageFile::takeOverAccess() const {
    struct stat old;
    if (fstatat(m_folder.number(), m_name.c_str(), &old, 0) != 0) return;
    constexpr uid_t kKeepOwner = static_cast<uid_t>(-1);
    const int file = m_file.number();
    const bool sameGroup =
        fchown(file, old.st_uid, old.st_gid) == 0 || fchown(file, kKeepOwner, old.st_gid) == 0;
    fchmod(file, old.st_mode & (sameGroup ? kAccessBits : kAccessBitsButGroup));
}

void ImageFile::write(const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(m_file.number(), bytes, size);
        if (written < 0 && errno == EINTR) continue;
        require(written >= 0);
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
}

void ImageFile::commit() {
    const int folder = m_folder.number();
    require(fsync(m_file.number()) == 0);
    require(m_file.close());
    require(renameat(folder, m_temporary.c_str(), folder, m_name.c_str()) == 0);
    m_temporary.clear();
    // The image stands. Some file systems cannot sync a folder, and need not.
    fsync(folder);
}

}  // namespace Dictionary
