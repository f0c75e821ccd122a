#include "Building.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Dictionary.h"
#include "Failure.h"
#include "Items.h"
#include "Napi.h"
#include "Progress.h"

namespace Dictionary::Node {

namespace {

struct Flag {
    const char* name;
    bool DictionaryBuildOptions::*flag;
};

constexpr Flag kFlags[] = {
    {"lenient", &DictionaryBuildOptions::lenient},
    {"fromWindows", &DictionaryBuildOptions::fromWindows},
    {"allowEmpty", &DictionaryBuildOptions::allowEmpty},
    {"folded", &DictionaryBuildOptions::folded},
};

std::optional<std::string> nameOf(const Value& value) {
    if (value.isUndefined()) return std::nullopt;
    return value.name();
}

const char* pointerTo(const std::optional<std::string>& text) {
    return text ? text->c_str() : nullptr;
}

// Where a dictionary comes from: {path}, {bytes} or {items}.
class Source {
public:
    explicit Source(const Value& given) {
        if (const Value path = given.member("path"); !path.isUndefined()) m_path = path.path();
        if (const Value bytes = given.member("bytes"); !bytes.isUndefined()) {
            m_bytes = bytes.bytes();
        }
        if (const Value items = given.member("items"); !items.isUndefined()) {
            m_items.emplace(items);
        }
    }

    DictionarySource describe() {
        DictionarySource source = {};
        source.size = sizeof source;
        source.path = pointerTo(m_path);
        if (m_bytes) source.bytes = {m_bytes->data(), m_bytes->size()};
        if (m_items) m_items->describe(source);
        return source;
    }

private:
    std::optional<std::string> m_path;
    std::optional<std::string> m_bytes;
    std::optional<Items> m_items;
};

// A build, from JavaScript's arguments to the result for JavaScript.
class Build {
public:
    // (source, target, options, onProgress, stop): the target is {path}, {memory: true} or {}.
    explicit Build(const Call& call)
        : m_source(call[0]),
          m_field(nameOf(call[2].member("fieldSeparator"))),
          m_record(nameOf(call[2].member("recordSeparator"))) {
        const Value target = call[1].member("path");
        if (!target.isUndefined()) m_target = target.path();
        m_isInMemory = !call[1].member("memory").isUndefined();
        readOptions(call[2]);
        m_progress.emplace(call.env(), call[3], call[4].external<Stop>());
    }
    Build(const Build&) = delete;
    ~Build() { dictionaryFreeBuffer(&m_image); }

    void run() {
        DictionaryTarget target = {};
        target.size = sizeof target;
        target.path = pointerTo(m_target);
        if (m_isInMemory) target.buffer = &m_image;
        m_report.size = sizeof m_report;
        const DictionarySource source = m_source.describe();
        DictionaryError error = {};
        dictionaryBuildFrom(&source, &target, &m_options, &m_report, &error);
        if (error.code != DICTIONARY_OK) m_failure.emplace(error);
        m_progress->finish();
    }

    // {error, bytes, report}
    static napi_value toJs(const Env& env, const std::shared_ptr<Build>& build) {
        const std::optional<Failure>& failure = build->m_failure;
        const DictionaryImageBuffer& image = build->m_image;
        return env.object(
            {{"error", failure ? failure->toJs(env) : env.undefined()},
             {"bytes", image.bytes == nullptr ? env.undefined()
                                              : env.uint8Array(image.bytes, image.size, build)},
             {"report", build->reportToJs(env)}});
    }

private:
    void readOptions(const Value& given) {
        m_options.size = sizeof m_options;
        m_options.fieldSeparator = pointerTo(m_field);
        m_options.recordSeparator = pointerTo(m_record);
        for (const auto& [name, flag] : kFlags) {
            const Value value = given.member(name);
            if (!value.isUndefined()) m_options.*flag = value.flag();
        }
        const Value limit = given.member("problemLimit");
        if (!limit.isUndefined()) m_options.problemLimit = limit.count();
        m_options.onProblem = collect;
        m_options.onProgress = goOn;
        m_options.context = this;
    }

    static void collect(void* self, const DictionaryError* problem) {
        static_cast<Build*>(self)->m_problems.emplace_back(*problem);
    }

    static bool goOn(void* self, int stage, std::uint64_t done, std::uint64_t total) {
        return static_cast<Build*>(self)->m_progress->report(stage, done, total);
    }

    napi_value reportToJs(const Env& env) const {
        const auto count = [&env](std::uint64_t n) { return env.number(static_cast<double>(n)); };
        std::vector<napi_value> problems;
        for (const Failure& problem : m_problems) problems.push_back(problem.toJs(env));
        return env.object({{"records", count(m_report.records)},
                           {"keys", count(m_report.keys)},
                           {"imageBytes", count(m_report.imageBytes)},
                           {"problemCount", count(m_report.problems)},
                           {"problems", env.array(problems)}});
    }

    Source m_source;
    std::optional<std::string> m_target;
    bool m_isInMemory = false;
    std::optional<std::string> m_field;
    std::optional<std::string> m_record;
    std::optional<Progress> m_progress;
    DictionaryBuildOptions m_options = {};
    DictionaryBuildReport m_report = {};
    DictionaryImageBuffer m_image = {};
    std::vector<Failure> m_problems;
    std::optional<Failure> m_failure;
};

// build(source, target, options, onProgress, stop): what Build::toJs makes
Job build(const Call& call) {
    return [build = std::make_shared<Build>(call)]() -> Answer {
        build->run();
        return [build](const Env& env) { return Build::toJs(env, build); };
    };
}

// makeStop(): a stop for one build
napi_value makeStop(const Call& call) {
    return call.env().external(std::make_shared<std::atomic<bool>>(false));
}

// stop(stop): ends the build soon
napi_value stop(const Call& call) {
    *call[0].external<Stop>() = true;
    return call.env().undefined();
}

}  // namespace

Functions buildFunctions() {
    return {
        {"buildLater", runLater<build>},
        {"makeStop", direct<makeStop>},
        {"stop", direct<stop>},
    };
}

}  // namespace Dictionary::Node
