// Runs lines through several threads, and keeps their order.

#ifndef DICTOOL_PIPELINE_H
#define DICTOOL_PIPELINE_H

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "Lines.h"
#include "Output.h"

namespace dictool {

// What one thread does with lines.
class LineWork {
public:
    virtual ~LineWork() = default;

    // Appends what is to be written for the line to `out`. Returns whether anything was found. The
    // line lasts until the end of its block.
    virtual bool take(std::string_view line, std::uint64_t number, std::string& out) = 0;

    // Called after the last line of a block: the same for the lines that were put off.
    virtual bool endBlock(std::string&) { return false; }
};

using MakeLineWork = std::function<std::unique_ptr<LineWork>()>;

// Has `threads` threads, each with a work of its own, take blocks of lines, and writes what they
// append, in the order of the lines. Takes memory for one block and its output per thread. Returns
// whether anything was found. Throws what a thread throws.
bool runLines(Lines& lines, Output& output, unsigned threads, const MakeLineWork& makeWork);

}  // namespace dictool

#endif
