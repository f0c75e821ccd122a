// The half of DATChecked.h that looks at images.

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <iterator>
#include <new>

#include "DATChecked.h"
#include "Descriptor.h"
#include "ImageCheck.h"
#include "ImageHandle.h"
#include "UTF8Coder.h"

namespace Dictionary {

namespace {

constexpr int kNoError = 0;

// The bytes of a file in memory that can only be read.
class Pages {
public:
    Pages() = default;
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;
    ~Pages() {
        if (m_bytes != MAP_FAILED) munmap(m_bytes, m_size);
    }

    // Both return 0 or an errno.
    int map(const Descriptor& file, std::size_t size) {
        return take(PROT_READ, MAP_PRIVATE | MAP_POPULATE, file.number(), size);
    }
    int copy(const Descriptor& file, std::size_t size) {
        const int error = take(PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, size);
        if (error != kNoError) return error;
        // Lookups jump about in it; where the system has no larger pages, these will do.
        madvise(m_bytes, size, MADV_HUGEPAGE);
        return fillFrom(file);
    }

    const void* bytes() const { return m_bytes; }

    // A handle that owns the bytes from then on.
    void* intoHandle() {
        void* const handle = ImageHandle::make(m_bytes, m_size);
        m_bytes = MAP_FAILED;
        return handle;
    }

private:
    int take(int protection, int flags, int file, std::size_t size) {
        m_bytes = mmap(nullptr, size, protection, flags, file, 0);
        m_size = size;
        return m_bytes == MAP_FAILED ? errno : kNoError;
    }

    int fillFrom(const Descriptor& file) {
        char* const bytes = static_cast<char*>(m_bytes);
        for (std::size_t filled = 0; filled < m_size;) {
            const ssize_t got = callUninterrupted(
                [&] { return read(file.number(), bytes + filled, m_size - filled); });
            if (got < 0) return errno;
            // The file has become shorter meanwhile.
            if (got == 0) return EIO;
            filled += static_cast<std::size_t>(got);
        }
        return mprotect(m_bytes, m_size, PROT_READ) == 0 ? kNoError : errno;
    }

    void* m_bytes = MAP_FAILED;
    std::size_t m_size = 0;
};

DictionaryImageFault faultOf(int code, int systemError, const char* text) {
    return {code, systemError, -1, -1, text};
}

DictionaryImageFault noFault() {
    return faultOf(DICTIONARY_IMAGE_OK, 0, "the image is sound");
}

// The codes of Dictionary.h are others.
DictionaryImageFault faultOf(const ImageFault& found) {
    constexpr int kFirstOfTheirs = 20;
    if (found.code == 0) return noFault();
    const int code = found.code - kFirstOfTheirs + DICTIONARY_IMAGE_TOO_SHORT;
    return {code, 0, found.cell, found.offset, found.text};
}

DictionaryImageFault noMemory() {
    return faultOf(DICTIONARY_IMAGE_NO_MEMORY, ENOMEM, "memory is too short to open the image");
}

DictionaryImageFault unreadable(int error) {
    if (error == ENOMEM) return noMemory();
    return faultOf(DICTIONARY_IMAGE_UNREADABLE, error, "the file cannot be read");
}

template <class Action>
DictionaryImageFault withoutThrowing(Action action) {
    try {
        return action();
    } catch (const std::bad_alloc&) {
        return noMemory();
    }
}

DictionaryImageFault checkBytes(const void* image, std::size_t size) {
    return withoutThrowing(
        [&] { return faultOf(checkImage(image, size, CUTF8Coder().getNumOfSingleWord())); });
}

// Brings a file into `pages` and checks it there.
DictionaryImageFault checkFile(const char* name, int mode, Pages& pages) {
    if (mode != DICTIONARY_OPEN_MAP && mode != DICTIONARY_OPEN_COPY) {
        return faultOf(DICTIONARY_IMAGE_UNREADABLE, EINVAL,
                       "there is no such way to open an image");
    }
    // Does not wait when the name is that of a pipe without a writer.
    constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
    const Descriptor file(
        callUninterrupted([&] { return open(name == nullptr ? "" : name, kFlags); }));
    struct stat status;
    if (!file.isOpen() || fstat(file.number(), &status) != 0) return unreadable(errno);
    if (S_ISDIR(status.st_mode)) return unreadable(EISDIR);
    if (!S_ISREG(status.st_mode)) return unreadable(EINVAL);

    const auto size = static_cast<std::size_t>(status.st_size);
    if (!canBeImageSize(size)) return checkBytes(nullptr, size);
    const int error = mode == DICTIONARY_OPEN_COPY ? pages.copy(file, size) : pages.map(file, size);
    return error != kNoError ? unreadable(error) : checkBytes(pages.bytes(), size);
}

// By code.
constexpr const char* kFaultNames[] = {"ok",        "unreadable", "no-memory", "too-short",
                                       "too-large", "header",     "area",      "free-cell",
                                       "parent",    "label",      "base",      "feature"};

bool report(const DictionaryImageFault& found, DictionaryImageFault* fault) {
    if (fault != nullptr) *fault = found;
    return found.code == DICTIONARY_IMAGE_OK;
}

}  // namespace

}  // namespace Dictionary

using namespace Dictionary;

const char* dictionaryFaultName(int code) {
    const bool known = code >= 0 && static_cast<std::size_t>(code) < std::size(kFaultNames);
    return known ? kFaultNames[code] : "unknown";
}

bool dictionaryVerify(const void* image, size_t size, DictionaryImageFault* fault) {
    return report(checkBytes(image, size), fault);
}

bool dictionaryVerifyFile(const char* fileName, DictionaryImageFault* fault) {
    Pages pages;
    return report(checkFile(fileName, DICTIONARY_OPEN_MAP, pages), fault);
}

void* dictionaryOpen(const char* fileName, int mode, DictionaryImageFault* fault) {
    Pages pages;
    void* handle = nullptr;
    DictionaryImageFault found = checkFile(fileName, mode, pages);
    if (found.code == DICTIONARY_IMAGE_OK) {
        found = withoutThrowing([&] {
            handle = pages.intoHandle();
            return noFault();
        });
    }
    report(found, fault);
    return handle;
}
