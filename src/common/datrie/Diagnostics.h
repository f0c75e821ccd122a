// Helper, not installed: message lines on the C standard streams.

#ifndef DICTIONARY_DIAGNOSTICS_H
#define DICTIONARY_DIAGNOSTICS_H

#include <cstdio>
#include <string>
#include <string_view>

namespace Dictionary {

// Gathers message lines and writes them to an unbuffered stream in blocks. The stream gets the same
// bytes in the same order as if the lines were written one by one. Flush before anything else
// writes to the stream.
class MessageBlock {
public:
    explicit MessageBlock(std::FILE* stream) : m_stream(stream) {}
    ~MessageBlock() { flush(); }

    MessageBlock(const MessageBlock&) = delete;
    MessageBlock& operator=(const MessageBlock&) = delete;

    MessageBlock& operator<<(std::string_view text);
    void flush();

private:
    std::FILE* m_stream;
    std::string m_text;
};

// A message printed as if it were built in a string stream, with an end of line, and then printed
// as a line: two newlines follow it. As in such a stream, a null part is a failure: what comes
// before it is printed with one newline, and the rest is dropped.
class StreamMessage {
public:
    StreamMessage& operator<<(const char* part);
    void print(std::FILE* stream);

private:
    std::string m_text;
    bool m_failed = false;
};

}  // namespace Dictionary

#endif
