// Files that tests read and write, and what is printed meanwhile.

#ifndef TESTS_TEMPORARY_FILE_H
#define TESTS_TEMPORARY_FILE_H

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

// A file with a unique name and the given bytes. The destructor removes it.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& content = "") {
        close(mkstemp(m_path.data()));
        std::ofstream(m_path, std::ios::binary) << content;
    }
    TemporaryFile(const TemporaryFile&) = delete;
    ~TemporaryFile() { unlink(path()); }

    const char* path() const { return m_path.c_str(); }
    std::string content() const {
        std::ifstream file(m_path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::string m_path = testing::TempDir() + "dictionaryXXXXXX";
};

struct Printed {
    std::string out, err;
};

template <typename Action>
Printed printedBy(Action action) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    action();
    return {testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

// The descriptor that the next file to be opened will get.
inline int nextDescriptor() {
    const int descriptor = open("/dev/null", O_RDONLY);
    close(descriptor);
    return descriptor;
}

inline long openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

// Closes, at the end of a scope, the source that the plain build in it leaves open.
class SourceCloser {
public:
    ~SourceCloser() { close(m_source); }

private:
    int m_source = nextDescriptor();
};

#endif
