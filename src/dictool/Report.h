// How commands end and what they say on standard error.

#ifndef DICTOOL_REPORT_H
#define DICTOOL_REPORT_H

#include <csignal>
#include <cstdint>
#include <string>
#include <string_view>

#include "Dictionary.h"

namespace dictool {

// The exit status, which is that of grep where the two have something in common.
enum Status : int {
    kDone = 0,                    // found, or done
    kNone = 1,                    // nothing found, or two images differ
    kTrouble = 2,                 // wrong usage, or a file cannot be read or written
    kBadImage = 4,                // a file that is not a sound image
    kInterrupted = 128 + SIGINT,  // by any signal
    kClosedPipe = 128 + SIGPIPE
};

// A place in a file. A line or column of 0 means that there is none.
struct Place {
    std::string file;
    std::uint64_t line = 0;
    std::uint64_t column = 0;
};

// Thrown to end the command with a message.
struct Failure {
    Status status;
    Place place;
    std::string code;
    std::string text;  // what is wrong and what to do about it
};

// Thrown when nobody reads the output any more. Ends the program without a message.
struct ClosedPipe {};

// Writes "dictool: FILE:LINE:COL: error CODE: text", in colours on a terminal. A message is one
// write, so that messages of several threads or processes do not mix. What is not printable is
// escaped.
void report(DictionarySeverity severity, const Place& place, std::string_view code,
            std::string_view text);
void report(const Failure& failure);

// The exit status after an error of the library.
Status statusOf(int code);

// An error of the library as a Failure on `file`.
Failure failureOf(const DictionaryError& error, const std::string& file);

// "dictool: text" and a newline.
std::string messageOf(std::string_view text);

// Writes such a message.
void remark(std::string_view text);

// The failure of the system call that has just failed on `file`; `advice` says what to do.
Failure systemFailure(const std::string& file, const std::string& code, const std::string& advice);

// Whether standard error is a terminal.
bool errorsOnTerminal();

}  // namespace dictool

#endif
