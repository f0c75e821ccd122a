// The functions of Dictionary.h that build images.

#include <cstddef>
#include <cstdlib>
#include <exception>
#include <memory>

#include "BuildCallbacks.h"
#include "BuildProblems.h"
#include "Dictionary.h"
#include "Errors.h"
#include "ImageBuild.h"
#include "ImageTarget.h"
#include "ReadStruct.h"
#include "SourceItems.h"
#include "SourceText.h"
#include "SystemFailure.h"

namespace Dictionary {

namespace {

// Empties the buffer, so that it is empty after every error.
DictionaryTarget readTarget(const DictionaryTarget* given) {
    const DictionaryTarget target =
        readStruct(given, "the target's size is not sizeof(DictionaryTarget)");
    if (target.buffer != nullptr) *target.buffer = {nullptr, 0};
    return target;
}

// What is built, from where, and how.
struct BuildRequest {
    BuildRequest(const DictionarySource* givenSource, const DictionaryTarget* givenTarget,
                 const DictionaryBuildOptions* givenOptions, DictionaryBuildReport* givenReport)
        : target(readTarget(givenTarget)),
          source(readStruct(givenSource, "the source's size is not sizeof(DictionarySource)")),
          options(
              readStruct(givenOptions, "the options' size is not sizeof(DictionaryBuildOptions)")),
          own(readStruct(givenReport, "the report's size is not sizeof(DictionaryBuildReport)")),
          report(givenReport == nullptr ? own : *givenReport) {
        const int sources = (source.path != nullptr) + (source.bytes.bytes != nullptr) +
                            (source.nextItem != nullptr);
        requireArgument(sources == 1, "a source is one of a path, bytes and items");
        requireArgument(target.path == nullptr || target.buffer == nullptr,
                        "a target is a path or a buffer, not both");
        report = {};
        report.size = sizeof report;
    }

    const DictionaryTarget target;
    const DictionarySource source;
    const DictionaryBuildOptions options;
    DictionaryBuildReport own;  // if the caller passes none
    DictionaryBuildReport& report;
};

// Null when the source is only checked.
std::unique_ptr<ImageTarget> targetOf(const DictionaryTarget& target) {
    if (target.path != nullptr) return std::make_unique<FileTarget>(target.path);
    if (target.buffer != nullptr) return std::make_unique<BufferTarget>(*target.buffer);
    return nullptr;
}

std::unique_ptr<SourceText> textOf(const DictionarySource& source) {
    if (source.path != nullptr) return std::make_unique<FileText>(source.path);
    return std::make_unique<MemoryText>(source.bytes.bytes, source.bytes.size);
}

void run(BuildRequest& request, const BuildCallbacks& callbacks, ProblemLog& log) {
    const std::unique_ptr<ImageTarget> target = targetOf(request.target);
    ImageBuild build(request.options, callbacks, log, request.report, target.get());
    if (request.source.nextItem != nullptr) {
        SourceItems items(request.source);
        return build.run(items);
    }
    build.run(*textOf(request.source));
}

// What ends a build early becomes a problem, unless the caller stopped it or called it wrongly.
void build(BuildRequest& request) {
    const BuildCallbacks callbacks(request.options);
    ProblemLog log(request.options, callbacks, request.report.problems, request.source.path,
                   request.target.path);
    try {
        run(request, callbacks, log);
    } catch (const SystemFailure& failure) {
        log.add(failure);
    } catch (const std::exception&) {
        // Here the standard library throws only when memory runs out.
        log.add(errorOf(DICTIONARY_NO_MEMORY));
    }
    if (log.hasErrors()) throw Failure{log.firstError()};
}

}  // namespace

}  // namespace Dictionary

using namespace Dictionary;

int dictionaryBuildFrom(const DictionarySource* source, const DictionaryTarget* target,
                        const DictionaryBuildOptions* options, DictionaryBuildReport* report,
                        DictionaryError* error) {
    return guarded(error, [&] {
        BuildRequest request(source, target, options, report);
        build(request);
    });
}

int dictionaryBuildFile(const char* source, const char* image,
                        const DictionaryBuildOptions* options, DictionaryBuildReport* report,
                        DictionaryError* error) {
    DictionarySource from = {};
    from.size = sizeof from;
    from.path = source;
    DictionaryTarget to = {};
    to.size = sizeof to;
    to.path = image;
    const int code = guarded(error, [&] {
        requireArgument(source != nullptr, "the path of the source is null");
        requireArgument(image != nullptr, "the path of the image is null");
    });
    return code == DICTIONARY_OK ? dictionaryBuildFrom(&from, &to, options, report, error) : code;
}

void dictionaryFreeBuffer(DictionaryImageBuffer* buffer) {
    if (buffer == nullptr) return;
    std::free(buffer->bytes);
    *buffer = {nullptr, 0};
}
