// Reading files, of which "-" is standard input.

#ifndef DICTOOL_FILE_H
#define DICTOOL_FILE_H

#include <string>

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

    // Appends what one call reads, which is at most `room` bytes; false at the end. Throws
    // Failure, or Interrupted when a signal that the program handles came instead.
    bool readMore(std::string& bytes, std::size_t room);

private:
    Failure failure() const;

    std::string m_name;
    int m_descriptor;
};

// All bytes of a file.
std::string readWhole(const std::string& name);

}  // namespace dictool

#endif
