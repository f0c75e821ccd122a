// The C++ face of DATChecked.h and DATMatch.h: owners instead of handles, exceptions instead of
// codes, vectors instead of lists. All of it is inline and fits every standard library.
//
// What those headers say of threads, units and lifetimes holds here. Besides the exceptions named,
// anything may throw std::bad_alloc.

#ifndef DICTIONARY_DAT_DICTIONARY_H
#define DICTIONARY_DAT_DICTIONARY_H

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "DATChecked.h"
#include "DATInterface.h"
#include "DATMatch.h"

namespace Dictionary {

// An image that is refused. The message holds the path, the reason and where the fault lies.
class CImageError : public std::runtime_error {
public:
    // `fault` is the reason why the file `path` is refused.
    CImageError(const std::string& path, const DictionaryImageFault& fault)
        : std::runtime_error(message(path, fault)), m_fault(fault) {}

    // The reason, as dictionaryOpen and dictionaryVerifyFile give it.
    const DictionaryImageFault& fault() const { return m_fault; }

private:
    static std::string message(const std::string& path, const DictionaryImageFault& fault) {
        std::string text = path + ": " + dictionaryFaultName(fault.code) + ": " + fault.text;
        if (fault.systemError != 0) text += std::string(": ") + std::strerror(fault.systemError);
        if (fault.cell >= 0) text += ", cell " + std::to_string(fault.cell);
        if (fault.offset >= 0) text += ", byte " + std::to_string(fault.offset);
        return text;
    }

    DictionaryImageFault m_fault;
};

// Throws CImageError unless the file `path` is an image over which every lookup stays inside.
inline void verifyImage(const std::string& path) {
    DictionaryImageFault fault;
    if (!dictionaryVerifyFile(path.c_str(), &fault)) throw CImageError(path, fault);
}

// A key found in a text. `data` points into the image and lasts as long as it.
struct SMatch : DictionaryMatch {
    // A copy of the data text, which depends on nothing.
    std::string dataText() const { return std::string(data, dataLength); }
};

// An open image, which can be moved but not copied. Lookups may run on several threads at once;
// moving and destroying must not overlap with any other use. One that was moved from finds nothing.
class CImage {
public:
    // Verifies and opens the image file `path`. Throws CImageError when it is refused.
    static CImage open(const std::string& path, DictionaryOpenMode mode = DICTIONARY_OPEN_MAP) {
        DictionaryImageFault fault;
        void* const handle = dictionaryOpen(path.c_str(), mode, &fault);
        if (handle == nullptr) throw CImageError(path, fault);
        return CImage(handle);
    }

    // For `search` and the functions of DATMatch.h. It stays the image's.
    void* handle() const { return m_handle.get(); }

    // Whether `key` as a whole is a key; if so, `data` gets its data text.
    bool lookup(const std::string& key, std::string& data) const {
        const char* found = nullptr;
        std::size_t length = 0;
        if (!dictionaryLookup(handle(), key.data(), key.size(), &found, &length)) return false;
        data.assign(found, length);
        return true;
    }

    // The matches of `text`, by start. Throws std::length_error when it is over 2,147,483,647 bytes
    // long.
    std::vector<SMatch> find(DictionaryFindMode mode, const std::string& text,
                             DictionaryUnit unit = DICTIONARY_UNIT_BYTE) const {
        if (text.size() > INT_MAX) throw std::length_error("the text is too long to search");
        DictionaryMatches list = {nullptr, 0, 0};
        const std::unique_ptr<DictionaryMatches, Release> owner(&list);
        if (!dictionaryFind(handle(), mode, unit, text.data(), text.size(), &list)) {
            throw std::bad_alloc();
        }
        std::vector<SMatch> matches(list.count);
        for (std::size_t i = 0; i < list.count; ++i) {
            static_cast<DictionaryMatch&>(matches[i]) = list.items[i];
        }
        return matches;
    }

private:
    struct Release {
        void operator()(void* handle) const { destroyBin(handle); }
        void operator()(DictionaryMatches* list) const { dictionaryReleaseMatches(list); }
    };

    explicit CImage(void* handle) : m_handle(handle) {}

    std::unique_ptr<void, Release> m_handle;
};

// A DictionaryProblem that lasts, with the file that it is about.
struct SProblem {
    int code;              // one of DictionaryProblemCode
    int severity;          // one of DictionarySeverity
    int systemError;       // errno where the system refused, else 0
    std::uint64_t line;    // the record's number, from 1; 0 where no record is meant
    std::uint64_t column;  // the byte in the record, from 1; 0 where no byte is meant
    std::string file;      // the source, or the image when it cannot be written
    std::string text;      // what is wrong and what to do about it, in words

    // "FILE:LINE:COLUMN: NAME: TEXT", without the numbers that the problem does not have.
    std::string message() const {
        std::string place = file;
        if (line != 0) place += ":" + std::to_string(line);
        if (column != 0) place += ":" + std::to_string(column);
        return place + ": " + dictionaryProblemName(code) + ": " + text;
    }
};

// What buildImage did and what it found on the way.
struct SBuild {
    int result;                      // one of DictionaryBuildResult, never DICTIONARY_NOT_BUILT
    DictionaryBuildReport report;    // what it counted
    std::vector<SProblem> problems;  // in the order of the source
};

// A source of which no image was made. The message is that of its first error.
class CBuildError : public std::runtime_error {
public:
    // `problems` are all that the build told.
    explicit CBuildError(const std::vector<SProblem>& problems)
        : std::runtime_error(firstError(problems)), m_problems(problems) {}

    // Of every severity, in the order of the source.
    const std::vector<SProblem>& problems() const { return m_problems; }

private:
    static std::string firstError(const std::vector<SProblem>& problems) {
        for (const SProblem& problem : problems) {
            if (problem.severity == DICTIONARY_ERROR) return problem.message();
        }
        return "the source has more problems than are told";
    }

    std::vector<SProblem> m_problems;
};

namespace Detail {

// What goes through the context of a build's callbacks.
struct BuildContext {
    const std::string& source;
    const std::string& image;
    const DictionaryBuildOptions& options;
    std::vector<SProblem> problems;
    bool memoryIsShort;

    // Nothing may be thrown through the library.
    static void collect(void* context, const DictionaryProblem* problem) {
        BuildContext& self = *static_cast<BuildContext*>(context);
        try {
            const bool isOfImage = problem->code == DICTIONARY_PROBLEM_CANNOT_WRITE;
            const std::string& file = isOfImage ? self.image : self.source;
            self.problems.push_back({problem->code, problem->severity, problem->systemError,
                                     problem->line, problem->column, file, problem->text});
        } catch (const std::bad_alloc&) {
            self.memoryIsShort = true;
        }
    }

    static bool goOn(void* context, int stage, uint64_t done, uint64_t total) {
        const DictionaryBuildOptions& options = static_cast<BuildContext*>(context)->options;
        return options.onProgress(options.context, stage, done, total);
    }
};

}  // namespace Detail

// Builds the image file `image` from the source file `source` as dictionaryBuild does. Throws
// CBuildError when an error leaves no new image. Of `options`, onProgress is called with its
// context; the problems are collected, onProblem is not called, and `size` need not be set.
inline SBuild buildImage(const std::string& source, const std::string& image,
                         const DictionaryBuildOptions& options = DictionaryBuildOptions()) {
    Detail::BuildContext context = {source, image, options, {}, false};
    DictionaryBuildOptions inner = options;
    inner.size = sizeof inner;
    inner.onProblem = Detail::BuildContext::collect;
    inner.onProgress = options.onProgress == nullptr ? nullptr : Detail::BuildContext::goOn;
    inner.context = &context;
    SBuild build = {};
    build.report.size = sizeof build.report;
    build.result = dictionaryBuild(source.c_str(), image.c_str(), &inner, &build.report);
    if (context.memoryIsShort) throw std::bad_alloc();
    if (build.result == DICTIONARY_NOT_BUILT) throw CBuildError(context.problems);
    build.problems.swap(context.problems);
    return build;
}

}  // namespace Dictionary

#endif
