// Helper, not installed: what handles of images hold, for the functions that make and read them.

#ifndef DICTIONARY_IMAGE_HANDLE_H
#define DICTIONARY_IMAGE_HANDLE_H

#include <sys/mman.h>

#include <cstddef>

#include "DATDictionarySample.h"

namespace Dictionary {

struct ImageHandle {
    // A handle to the image in the `size` mapped bytes at `image`, which destroyBin unmaps.
    static void* make(void* image, std::size_t size) {
        auto* app = new CDictionayApp;
        app->m_image = image;
        app->m_imageLength = static_cast<long>(size);
        return app;
    }

    // The image of a handle; null when the handle is null or holds none.
    static const void* imageOf(const void* handle) {
        if (handle == nullptr) return nullptr;
        const void* image = static_cast<const CDictionayApp*>(handle)->m_image;
        return image == MAP_FAILED ? nullptr : image;
    }
};

}  // namespace Dictionary

#endif
