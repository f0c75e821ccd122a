// The dictionary library itself, used as the others are.

#ifndef BENCH_LIBRARY_H
#define BENCH_LIBRARY_H

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <memory>

#include "DATInterface.h"
#include "DATReader.h"
#include "DATWriter.h"
#include "ImageFormat.h"
#include "Kernel.h"
#include "OtherDictionary.h"

namespace Bench {

// Sends both standard streams to /dev/null while it lives.
class Silence {
public:
    Silence() {
        flush();
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }

    ~Silence() {
        flush();
        restore(m_output, STDOUT_FILENO);
        restore(m_errors, STDERR_FILENO);
    }

    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    static void flush() {
        std::cout.flush();
        std::fflush(nullptr);
    }

    static void restore(int saved, int stream) {
        dup2(saved, stream);
        close(saved);
    }

    const int m_output = dup(STDOUT_FILENO);
    const int m_errors = dup(STDERR_FILENO);
};

class Library {
public:
    static constexpr const char* kName = "library";

    // A result of search.
    struct Result {
        operator std::string_view() const { return text.get(); }
        std::unique_ptr<char, decltype(&freeResult)> text;
    };

    static void buildFile(const std::string& source, const std::string& target) {
        const Silence silence;
        buildTree(source.c_str(), target.c_str());
    }

    static std::string firstAnswer(const std::string& file, const std::string& text) {
        const Handle handle(loadBin(file.c_str()), destroyBin);
        return std::string(searchIn(handle, text, true));
    }

    // Builds in memory; search needs a file.
    explicit Library(const std::vector<Entry>& entries) : m_own(built(entries)) {
        attach(m_own.get());
    }

    explicit Library(const std::string& file)
        : m_file(std::in_place, file), m_handle(loadBin(file.c_str()), destroyBin) {
        attach(m_file->data());
    }

    void exact(const std::string& key, std::string& text) const {
        m_reader->exactMatch(key.c_str(), text);
    }

    void everyMatch(const std::string& text, Matches& matches) const {
        m_reader->allMatch(text.c_str(), matches, false, -1);
    }

    void longestMatch(const std::string& text, Matches& matches) const {
        m_reader->maxMatch(text.c_str(), matches);
    }

    Result search(const std::string& text, bool withFeatures) const {
        return searchIn(m_handle, text, withFeatures);
    }

    std::string_view featureText(int feature) const {
        const std::int32_t cellBytes = Dictionary::cellBytesOf(Dictionary::headerOf(m_image));
        return Dictionary::featureTextAt(m_image + cellBytes, feature);
    }

private:
    using Handle = std::unique_ptr<void, decltype(&destroyBin)>;

    static Result searchIn(const Handle& handle, const std::string& text, bool withFeatures) {
        return {{::search(text.c_str(), handle.get(), withFeatures), freeResult}};
    }

    static std::unique_ptr<char[]> built(const std::vector<Entry>& entries) {
        const Silence silence;
        Dictionary::CUTF8Coder coder;
        Dictionary::CDATWriter writer(&coder, false);
        for (const auto& [key, text] : entries) writer.addKeys(key.data(), std::string(text));
        if (!writer.buildDAT()) fail("the library refuses its keys");
        return std::unique_ptr<char[]>(writer.write());
    }

    void attach(char* image) {
        m_image = image;
        m_reader.emplace(&m_coder, image, false);
    }

    std::unique_ptr<char[]> m_own;  // null when the image is in a file
    std::optional<Mapping> m_file;
    Handle m_handle{nullptr, destroyBin};
    char* m_image = nullptr;
    Dictionary::CUTF8Coder m_coder;
    mutable std::optional<Dictionary::CDATReader> m_reader;
};

// The library with a narrower kernel than the one that the machine would use.
template <Dictionary::Kernel kernel>
class LibraryOn : public Library {
public:
    static constexpr const char* kName =
        kernel == Dictionary::kAvx2 ? "library-avx2" : "library-baseline";

    using Library::Library;
};

// While it lives, the engine uses its kernel.
template <class Engine>
struct InUse {
    static bool isPossible() { return true; }
    InUse() {}
};

template <Dictionary::Kernel kernel>
struct InUse<LibraryOn<kernel>> {
    static bool isPossible() { return kernel < Dictionary::kernelInUse(); }
    const Dictionary::ForcedKernel forced{kernel};
};

}  // namespace Bench

#endif
