// Reading files. "-" is standard input.

#ifndef DICTOOL_FILE_H
#define DICTOOL_FILE_H

#include <string>

#include "Buffer.h"
#include "Report.h"

namespace dictool {

// A file open for reading.
class File {
public:
    // Throws Failure when the file cannot be opened.
    explicit File(const std::string& name);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    // Appends what one system call reads, at most `room` bytes; false at the end. Throws Failure.
    bool readMore(Buffer& bytes, std::size_t room);

private:
    Failure failure() const;

    std::string m_name;
    int m_descriptor;
};

// Whether both names lead to one file.
bool isOneFile(const std::string& name, const std::string& other);

// All bytes of a file.
Buffer readWhole(const std::string& name);

}  // namespace dictool

#endif
