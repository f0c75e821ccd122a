// Helper, not installed: where the image of a build goes.

#ifndef DICTIONARY_IMAGE_TARGET_H
#define DICTIONARY_IMAGE_TARGET_H

#include <cstddef>
#include <cstdlib>
#include <memory>

#include "Dictionary.h"
#include "FileStatus.h"
#include "ImageFile.h"

namespace Dictionary {

// What was there before stays until commit().
class ImageTarget {
public:
    virtual ~ImageTarget() = default;

    // Whether `file` is the one to replace.
    virtual bool replaces(const FileStatus& file) const = 0;

    // The stages, in order.
    virtual void create(std::size_t imageBytes) = 0;
    virtual void write(const char* bytes, std::size_t size) = 0;
    virtual void commit() = 0;
};

// Throws a SystemFailure.
class FileTarget final : public ImageTarget {
public:
    explicit FileTarget(const char* path) : m_file(path) {}

    bool replaces(const FileStatus& file) const override { return m_file.replaces(file); }
    void create(std::size_t) override { m_file.create(); }
    void write(const char* bytes, std::size_t size) override { m_file.write(bytes, size); }
    void commit() override { m_file.commit(); }

private:
    ImageFile m_file;
};

class BufferTarget final : public ImageTarget {
public:
    explicit BufferTarget(DictionaryImageBuffer& buffer) : m_buffer(buffer) {}

    bool replaces(const FileStatus&) const override { return false; }
    void create(std::size_t imageBytes) override;
    void write(const char* bytes, std::size_t size) override;
    void commit() override;

private:
    struct Free {
        void operator()(char* bytes) const { std::free(bytes); }
    };

    DictionaryImageBuffer& m_buffer;
    std::unique_ptr<char, Free> m_bytes;
    std::size_t m_written = 0;
};

}  // namespace Dictionary

#endif
