// Helper, not installed: the bytes of a source, a stretch at a time.

#ifndef DICTIONARY_SOURCE_TEXT_H
#define DICTIONARY_SOURCE_TEXT_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include "Descriptor.h"
#include "FileStatus.h"

namespace Dictionary {

class SourceText {
public:
    virtual ~SourceText() = default;

    // Called once, before the others. Throws a SystemFailure.
    virtual void open() {}

    // Empty for bytes in memory.
    virtual FileStatus file() const { return std::nullopt; }

    // `action` is called several times a second while more() waits for bytes, and may throw.
    void whileWaiting(std::function<void()> action) { m_wait = std::move(action); }

    // Returns the last `unread` of the bytes returned so far, followed by a stretch of new ones. At
    // the end of the source there are no new ones. What was returned before is no longer valid.
    virtual std::string_view more(std::size_t unread) = 0;

    // The number of bytes returned so far.
    std::uint64_t position() const { return m_position; }

    // How many bytes there are; 0 if that is not known before they are read.
    virtual std::uint64_t size() const = 0;

protected:
    static constexpr std::size_t kStretchBytes = std::size_t{1} << 20;

    std::uint64_t m_position = 0;
    std::function<void()> m_wait = [] {};
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

// A file is read, not mapped. So no signal ends this process if another one truncates the file.
class FileText : public SourceText {
public:
    // A file, or whatever else has that name.
    explicit FileText(const char* fileName) : m_fileName(fileName) {}

    void open() override;
    FileStatus file() const override { return m_status; }
    // Throws a SystemFailure.
    std::string_view more(std::size_t unread) override;
    std::uint64_t size() const override;

private:
    bool isRegular() const { return m_status.has_value() && S_ISREG(m_status->st_mode); }
    std::size_t fill(char* room);
    void waitForBytes() const;

    const char* m_fileName;
    Descriptor m_file;
    FileStatus m_status;
    std::vector<char> m_buffer;
    std::size_t m_filled = 0;  // bytes in the buffer; they end with the last ones returned
    bool m_ended = false;      // needed because a terminal can be read on after its end
};

}  // namespace Dictionary

#endif
