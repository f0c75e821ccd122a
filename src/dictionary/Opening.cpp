// The functions of Dictionary.h that open, verify and close.

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include "Descriptor.h"
#include "Dictionary.h"
#include "Errors.h"
#include "Handle.h"
#include "ImageBytes.h"
#include "ImageCheck.h"
#include "OpenImage.h"
#include "SharedImages.h"

namespace Dictionary {

namespace {

constexpr std::size_t kMaxImages = 64;

[[noreturn]] void failToRead(const char* path, int systemError) {
    failOnFile(DICTIONARY_CANNOT_READ, DICTIONARY_FILE_IMAGE, path, systemError);
}

// An open image file with its status.
struct ImageSource {
    explicit ImageSource(const char* name) : path(name) {
        requireArgument(path != nullptr, "the path of the image is null");
        // Does not wait when the name is that of a pipe without a writer.
        constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
        file = Descriptor(callUninterrupted([&] { return open(path, kFlags); }));
        if (!file.isOpen() || fstat(file.number(), &status) != 0) failToRead(path, errno);
        if (S_ISDIR(status.st_mode)) failToRead(path, EISDIR);
        if (!S_ISREG(status.st_mode)) failToRead(path, EINVAL);
    }

    std::size_t size() const { return static_cast<std::size_t>(status.st_size); }

    const char* path;
    Descriptor file;
    struct stat status = {};
};

// Calls `action`. Its errors get the path of the file.
template <class Action>
auto concerning(const char* path, const Action& action) {
    try {
        return action();
    } catch (const ImageBytes::SystemRefusal& refusal) {
        failToRead(path, refusal.error);
    } catch (Failure& failure) {
        failure.error.file = DICTIONARY_FILE_IMAGE;
        failure.error.path = path;
        throw;
    }
}

ImageBytes bytesOf(const ImageSource& source, int mode) {
    requireImageSize(source.size());
    return mode == DICTIONARY_OPEN_COPY ? ImageBytes::copy(source.file, source.size())
                                        : ImageBytes::map(source.file, source.size());
}

SharedImage openOwn(const ImageSource& source, int mode) {
    return concerning(source.path,
                      [&] { return std::make_shared<const OpenImage>(bytesOf(source, mode)); });
}

SharedImage openShared(const ImageSource& source) {
    if (SharedImage open = findShared(source.status)) return open;
    return share(source.status, openOwn(source, DICTIONARY_OPEN_SHARE));
}

SharedImage openFile(const char* path, int mode) {
    requireArgument(mode == DICTIONARY_OPEN_MAP || mode == DICTIONARY_OPEN_COPY ||
                        mode == DICTIONARY_OPEN_SHARE,
                    "a file is opened in the mode MAP, COPY or SHARE");
    const ImageSource source(path);
    return mode == DICTIONARY_OPEN_SHARE ? openShared(source) : openOwn(source, mode);
}

SharedImage openBytes(std::string_view bytes, int mode) {
    requireArgument(mode == DICTIONARY_OPEN_COPY || mode == DICTIONARY_OPEN_BORROW,
                    "bytes are opened in the mode COPY or BORROW");
    requireArgument(bytes.data() != nullptr || bytes.empty(), "the bytes are null");
    return concerning(nullptr, [&] {
        requireImageSize(bytes.size());
        return std::make_shared<const OpenImage>(
            mode == DICTIONARY_OPEN_COPY ? ImageBytes::copy(bytes) : ImageBytes::borrow(bytes));
    });
}

Images imagesOf(const DictionaryHandle* const* handles, std::size_t count) {
    requireArgument(handles != nullptr, "the images of a set are null");
    requireArgument(count >= 1 && count <= kMaxImages, "a set has from 1 to 64 images");
    Images images;
    for (std::size_t i = 0; i < count; ++i) {
        requireArgument(handles[i] != nullptr, "an image of a set is null");
        requireArgument(!handles[i]->isSet, "a set cannot be part of a set");
        images.push_back(handles[i]->images.front());
    }
    return images;
}

// The handle that `make` returns; null when it throws.
template <class Make>
DictionaryHandle* handleOrNull(DictionaryError* error, const Make& make) {
    DictionaryHandle* handle = nullptr;
    guarded(error, [&] { handle = make(); });
    return handle;
}

}  // namespace

}  // namespace Dictionary

using namespace Dictionary;

DictionaryHandle* dictionaryOpenFile(const char* path, int mode, DictionaryError* error) {
    return handleOrNull(error, [&] { return new DictionaryHandle(openFile(path, mode)); });
}

DictionaryHandle* dictionaryOpenBytes(DictionaryText bytes, int mode, DictionaryError* error) {
    return handleOrNull(error, [&] {
        return new DictionaryHandle(openBytes({bytes.bytes, bytes.size}, mode));
    });
}

DictionaryHandle* dictionaryOpenSet(const DictionaryHandle* const* images, size_t count,
                                    DictionaryError* error) {
    return handleOrNull(error, [&] { return new DictionaryHandle(imagesOf(images, count)); });
}

void dictionaryClose(DictionaryHandle* handle) {
    delete handle;
}

int dictionaryVerifyImage(const char* path, DictionaryError* error) {
    return guarded(error, [&] {
        const ImageSource source(path);
        concerning(path, [&] { requireSoundImage(bytesOf(source, DICTIONARY_OPEN_MAP).view()); });
    });
}

int dictionaryVerifyBytes(DictionaryText bytes, DictionaryError* error) {
    return guarded(error, [&] {
        concerning(nullptr, [&] { requireSoundImage({bytes.bytes, bytes.size}); });
    });
}
