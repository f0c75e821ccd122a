// Helper, not installed: message lines on the C standard streams.

#ifndef DICTIONARY_DIAGNOSTICS_H
#define DICTIONARY_DIAGNOSTICS_H

#include <cstdio>
#include <string>
#include <string_view>

namespace Dictionary {

// Gathers message lines and writes them to an unbuffered stream in blocks: the same bytes in the
// same order as written one by one. Flush before anything else writes to the stream.
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

// A message that is built in a string stream, where it gets an end of line, and is then printed as
// a line: two newlines follow it. A null part makes such a stream fail: what comes before it is
// printed with one newline, and the rest is dropped.
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
