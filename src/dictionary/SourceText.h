// Helper, not installed: the bytes of a source, a stretch at a time.

#ifndef DICTIONARY_SOURCE_TEXT_H
#define DICTIONARY_SOURCE_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "Descriptor.h"

namespace Dictionary {

class SourceText {
public:
    virtual ~SourceText() = default;

    // The last `unread` bytes of those handed out so far, and a stretch of new ones behind them;
    // none are new at the source's end. What was handed out before is no longer valid.
    virtual std::string_view more(std::size_t unread) = 0;

    // The bytes handed out so far.
    std::uint64_t position() const { return m_position; }

    // How many bytes there are; 0 when that is not known before they are read.
    virtual std::uint64_t size() const = 0;

protected:
    static constexpr std::size_t kStretchBytes = std::size_t{1} << 20;

    std::uint64_t m_position = 0;
};

class MemoryText : public SourceText {
public:
    // The bytes must outlive the object.
    MemoryText(const char* bytes, std::size_t size) : m_bytes(bytes), m_size(size) {}

    std::string_view more(std::size_t unread) override;
    std::uint64_t size() const override { return m_size; }

private:
    const char* m_bytes;
    std::size_t m_size;
};

// A file is read, never mapped, so that nobody who cuts it short meanwhile ends the process.
class FileText : public SourceText {
public:
    // A file, or whatever else has that name. It is opened when it is first read.
    explicit FileText(const char* fileName) : m_fileName(fileName) {}

    // Throws a SystemFailure.
    std::string_view more(std::size_t unread) override;
    std::uint64_t size() const override { return m_size; }

private:
    void open();
    std::size_t fill(char* room);

    const char* m_fileName;
    Descriptor m_file;
    std::uint64_t m_size = 0;
    std::vector<char> m_buffer;
    std::size_t m_filled = 0;  // bytes in the buffer, the last ones handed out at its end
    bool m_ended = false;      // a terminal may go on behind its end
};

}  // namespace Dictionary

#endif
