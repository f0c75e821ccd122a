#include "ImageFile.h"

#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <sys/random.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <utility>

#include "SizeSignal.h"
#include "SystemFailure.h"

namespace Dictionary {

namespace {

constexpr mode_t kAccessBits = 0777;
constexpr mode_t kAccessBitsButGroup = 0707;
constexpr mode_t kNewFileAccess = 0666;
constexpr mode_t kOwnAccess = 0600;
constexpr int kFollow = 0;
constexpr char kItself[] = ".";

[[noreturn]] void failToWrite(int error) {
    throw SystemFailure{SystemFailure::kImage, error};
}

void require(bool done) {
    if (!done) failToWrite(errno);
}

// What the system finds under a name. The system decides whether to follow a link: it may refuse
// one that another user planted.
FileStatus statusOf(int folder, const char* name, int flags) {
    struct stat status;
    if (fstatat(folder, name, &status, flags) == 0) return status;
    require(errno == ENOENT);
    return std::nullopt;
}

// A file would take the place of a device or a pipe, and it cannot take that of a folder.
void refuseWhatIsNoImage(const FileStatus& file) {
    if (!file.has_value()) return;
    if (S_ISDIR(file->st_mode)) failToWrite(EISDIR);
    if (!S_ISREG(file->st_mode)) failToWrite(EOPNOTSUPP);
}

void requireAccess(const Descriptor& folder, const char* name, int access) {
    require(faccessat(folder.number(), name, access, AT_EACCESS) == 0);
}

// The folder of a path, with its slash; empty for the working directory.
std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

// Where a path leads if its last part is a symbolic link. The link need not lead to a file.
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

// A name that cannot be guessed, short enough for every file system.
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

ImageFile::ImageFile(const char* name) : m_old(statusOf(AT_FDCWD, name, kFollow)) {
    refuseWhatIsNoImage(m_old);
    const std::string path = followLinks(name);
    const std::string folder = folderOf(path);
    m_name = path.substr(folder.size());
    if (m_name.empty()) failToWrite(path.empty() ? ENOENT : EISDIR);
    openFolder(folder);
    // Refuses a file without a name, to which a descriptor's link may lead, and a link that was
    // changed just now.
    const FileStatus found = statusOf(m_folder.number(), m_name.c_str(), AT_SYMLINK_NOFOLLOW);
    if (!areSame(found, m_old)) failToWrite(ENOENT);
    // A rename would replace even a file that may not be written.
    if (m_old.has_value()) requireAccess(m_folder, m_name.c_str(), W_OK);
}

void ImageFile::openFolder(const std::string& folder) {
    constexpr int kFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    m_folder =
        Descriptor(callUninterrupted([&] { return open((folder + kItself).c_str(), kFlags); }));
    require(m_folder.isOpen());
    requireAccess(m_folder, kItself, W_OK | X_OK);
}

ImageFile::~ImageFile() {
    if (!m_temporary.empty()) removeTemporary();
}

void ImageFile::create() {
    // The first file shows what access rights the system sets for a new file.
    createTemporary(kNewFileAccess);
    struct stat status;
    require(fstat(m_file.number(), &status) == 0);
    m_newFileAccess = status.st_mode & kAccessBits;
    removeTemporary();
    createTemporary(kOwnAccess);
}

void ImageFile::createTemporary(mode_t access) {
    constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    constexpr int kAttempts = 100;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        std::string name = temporaryName(m_name);
        m_file = Descriptor(callUninterrupted(
            [&] { return openat(m_folder.number(), name.c_str(), kFlags, access); }));
        if (m_file.isOpen()) {
            m_temporary = std::move(name);
            return;
        }
        require(errno == EEXIST);
    }
    failToWrite(EEXIST);
}

void ImageFile::removeTemporary() {
    unlinkat(m_folder.number(), m_temporary.c_str(), 0);
    m_temporary.clear();
}

void ImageFile::write(const char* bytes, std::size_t size) {
    const SizeSignalHeld held;
    while (size > 0) {
        const ssize_t written =
            callUninterrupted([&] { return ::write(m_file.number(), bytes, size); });
        require(written >= 0);
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
}

void ImageFile::commit() {
    const int folder = m_folder.number();
    giveAccess();
    require(callUninterrupted([&] { return fsync(m_file.number()); }) == 0);
    require(m_file.close());
    require(renameat(folder, m_temporary.c_str(), folder, m_name.c_str()) == 0);
    m_temporary.clear();
    syncFolder();
}

// Whoever may use the old image may use the new one, as far as the system allows us to arrange it.
void ImageFile::giveAccess() const {
    const int file = m_file.number();
    const FileStatus old = statusOf(m_folder.number(), m_name.c_str(), AT_SYMLINK_NOFOLLOW);
    if (!old.has_value()) {
        fchmod(file, m_newFileAccess);
        return;
    }
    constexpr uid_t kKeepOwner = static_cast<uid_t>(-1);
    const bool sameGroup =
        fchown(file, old->st_uid, old->st_gid) == 0 || fchown(file, kKeepOwner, old->st_gid) == 0;
    fchmod(file, old->st_mode & (sameGroup ? kAccessBits : kAccessBitsButGroup));
}

// Ignores errors. The image is already complete, and some folders cannot be synced, or not by this
// process.
void ImageFile::syncFolder() const {
    constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    const Descriptor folder(
        callUninterrupted([&] { return openat(m_folder.number(), kItself, kFlags); }));
    if (folder.isOpen()) callUninterrupted([&] { return fsync(folder.number()); });
}

}  // namespace Dictionary
