// How commands end and what they say on standard error.

#ifndef DICTOOL_REPORT_H
#define DICTOOL_REPORT_H

#include <csignal>
#include <cstdint>
#include <string>
#include <string_view>

#include "Dictionary.h"

namespace dictool {

// What the program ends with, as grep does where the two have something in common.
enum Status : int {
    kDone = 0,                    // found, or done
    kNone = 1,                    // nothing found, or two images differ
    kTrouble = 2,                 // wrong usage, or a file cannot be read or written
    kBadImage = 4,                // an image that is none
    kInterrupted = 128 + SIGINT,  // by any signal
    kClosedPipe = 128 + SIGPIPE
};

// A place in a file; line 0 and column 0 say that none is meant.
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

// Thrown when no reader of the output is left: ends the program without a message.
struct ClosedPipe {};

// Writes "dictool: FILE:LINE:COL: error CODE: text", in colours on a terminal. A message is one
// write, so those of several threads or processes do not mix. What is not printable is escaped.
void report(DictionarySeverity severity, const Place& place, std::string_view code,
            std::string_view text);
void report(const Failure& failure);

// What a command ends with after an error of the library.
Status statusOf(int code);

// What the library says of `file`.
Failure failureOf(const DictionaryError& error, const std::string& file);

// "dictool: text" and a newline.
std::string messageOf(std::string_view text);

// Writes that.
void remark(std::string_view text);

// The failure of the system call that has just failed on `file`; `advice` says what to do.
Failure systemFailure(const std::string& file, const std::string& code, const std::string& advice);

// Whether standard error is a terminal.
bool errorsOnTerminal();

}  // namespace dictool

#endif
