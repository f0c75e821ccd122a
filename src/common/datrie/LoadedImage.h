// Helper, not installed: a handle of the entry points that is not a CDictionayApp.

#ifndef DICTIONARY_LOADED_IMAGE_H
#define DICTIONARY_LOADED_IMAGE_H

#include <cstring>

namespace Dictionary {

// Both kinds of handles begin with a pointer. That of a CDictionayApp points to its coder, this one
// to kMark, which is never a coder.
class LoadedImage {
public:
    using Destroy = void (*)(LoadedImage* handle);

    // Null when the handle is a CDictionayApp.
    static LoadedImage* of(void* handle) {
        const void* begin;
        std::memcpy(&begin, handle, sizeof begin);
        return begin == &kMark ? static_cast<LoadedImage*>(handle) : nullptr;
    }

    // The image that `search` reads; null when it is to find nothing.
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
