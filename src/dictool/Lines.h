// Reading lines of any length, many at a time.

#ifndef DICTOOL_LINES_H
#define DICTOOL_LINES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "File.h"

namespace dictool {

// Whole lines. The last one may lack its end.
struct Block {
    Buffer bytes;
    std::uint64_t firstLine = 1;  // the number of the first one
};

// The lines of several files, one after the other, numbered through all files. A file that cannot
// be read is reported and skipped. A block has some 100 KB, or one line if that is longer.
class Lines {
public:
    // `files` may be empty for standard input, which "-" stands for, too. If `eager`, lines are
    // handed out as soon as they are read; else a whole block is read first.
    Lines(std::vector<std::string> files, char end, bool eager);
    // The lines of `text`.
    Lines(std::string_view text, char end);

    // Puts the next lines into `block`; false at the end. Not for two threads at once.
    bool next(Block& block);

    char end() const { return m_end; }
    // Whether a file could not be read.
    bool failed() const { return m_failed; }

private:
    bool nextOfFile(Buffer& bytes);
    bool readMore(Buffer& bytes);
    bool openNext();

    std::vector<std::string> m_files;
    std::size_t m_nextFile = 0;
    std::optional<File> m_file;
    char m_end;
    bool m_eager = false;
    bool m_failed = false;
    std::uint64_t m_line = 1;
    Buffer m_rest;  // what was read after the last whole line
};

// Calls `take(line, number)` for every line of a block.
template <class Take>
void forEachLine(const Block& block, char end, Take take) {
    std::string_view left = block.bytes.text();
    for (std::uint64_t number = block.firstLine; !left.empty(); ++number) {
        const std::size_t size = left.find(end);
        take(left.substr(0, size), number);
        if (size == std::string_view::npos) return;
        left.remove_prefix(size + 1);
    }
}

}  // namespace dictool

#endif
