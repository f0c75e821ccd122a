// Helper, not installed: what a handle of the entry points is when it is no CDictionayApp.

#ifndef DICTIONARY_LOADED_IMAGE_H
#define DICTIONARY_LOADED_IMAGE_H

#include <cstring>

namespace Dictionary {

// Both kinds of handles begin with a pointer: a CDictionayApp with that to its coder, this one with
// that to a mark that is nothing else.
class LoadedImage {
public:
    using Destroy = void (*)(LoadedImage* handle);

    // Null when the handle is a CDictionayApp.
    static LoadedImage* of(void* handle) {
        const void* begin;
        std::memcpy(&begin, handle, sizeof begin);
        return begin == &kMark ? static_cast<LoadedImage*>(handle) : nullptr;
    }

    // Where `search` looks; null when it finds nothing.
    const void* searchedImage() const { return m_image; }
    void destroy() { m_destroy(this); }

protected:
    LoadedImage(const void* image, Destroy destroyThis) : m_image(image), m_destroy(destroyThis) {}
    ~LoadedImage() = default;

private:
    inline static const char kMark = 0;

    [[maybe_unused]] const void* const m_mark = &kMark;
    const void* const m_image;
    const Destroy m_destroy;
};

}  // namespace Dictionary

#endif
