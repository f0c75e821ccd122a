// Helper, not installed: what the system knows of a file.

#ifndef DICTIONARY_FILE_STATUS_H
#define DICTIONARY_FILE_STATUS_H

#include <sys/stat.h>

#include <cerrno>
#include <optional>

namespace Dictionary {

// Empty if there is no file.
using FileStatus = std::optional<struct stat>;

// Whether both are the same file, under whatever names, or neither exists.
inline bool areSame(const FileStatus& one, const FileStatus& other) {
    if (!one.has_value() || !other.has_value()) return one.has_value() == other.has_value();
    return one->st_dev == other->st_dev && one->st_ino == other->st_ino;
}

}  // namespace Dictionary

#endif
