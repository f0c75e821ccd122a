// What index.js calls: thin functions over the C interface, which answer with plain values.

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "DATChecked.h"
#include "DATInterface.h"
#include "DATMatch.h"
#include "Napi.h"
#include "Utf8Text.h"

namespace Dictionary::Node {

namespace {

// Shared by an open dictionary and every search in it that is under way.
using Image = std::shared_ptr<void>;

// ---- Opening

napi_value toJs(const Env& env, const DictionaryImageFault& fault) {
    return env.object({{"code", env.string(dictionaryFaultName(fault.code))},
                       {"errno", env.number(fault.systemError)},
                       {"cell", env.number(static_cast<double>(fault.cell))},
                       {"offset", env.number(static_cast<double>(fault.offset))},
                       {"text", env.string(fault.text)}});
}

// open(path, copy): {image} or {fault}
Job open(const Call& call) {
    const int mode = call.flag(1) ? DICTIONARY_OPEN_COPY : DICTIONARY_OPEN_MAP;
    return [path = call.name(0), mode]() -> Answer {
        DictionaryImageFault fault = {};
        void* const handle = dictionaryOpen(path.c_str(), mode, &fault);
        if (handle == nullptr) {
            return [fault](const Env& env) { return env.object({{"fault", toJs(env, fault)}}); };
        }
        return [image = Image(handle, destroyBin)](const Env& env) {
            return env.object({{"image", env.external(image)}});
        };
    };
}

// close(image)
napi_value close(const Call& call) {
    call.external<Image>(0).reset();
    return nullptr;
}

// ---- One key

// lookup(image, key): its data, or null
napi_value lookup(const Call& call) {
    const Utf8Text key(call.text(1));
    const char* data = nullptr;
    std::size_t size = 0;
    const void* const image = call.external<Image>(0).get();
    if (!dictionaryLookup(image, key.data(), key.size(), &data, &size)) return call.env().null();
    return call.env().string({data, size});
}

// has(image, key)
napi_value has(const Call& call) {
    const Utf8Text key(call.text(1));
    const void* const image = call.external<Image>(0).get();
    return call.env().boolean(dictionaryLookup(image, key.data(), key.size(), nullptr, nullptr));
}

// ---- Keys in a text

// Matches in the form that is quickest to hand over: for each its start, its end and the number of
// its data text, as every text is made a string only once.
class Found {
public:
    Found(Image image, int mode, const Utf8Text& text) : m_image(std::move(image)) {
        DictionaryMatches matches = {};
        const std::unique_ptr<DictionaryMatches, void (*)(DictionaryMatches*)> owner(
            &matches, dictionaryReleaseMatches);
        // No JavaScript string is long enough to be refused for its length.
        if (!dictionaryFind(m_image.get(), mode, DICTIONARY_UNIT_UTF16, text.data(), text.size(),
                            &matches)) {
            throw std::bad_alloc();
        }
        m_spans.reserve(kNumbersOfMatch * matches.count);
        for (std::size_t i = 0; i < matches.count; ++i) add(matches.items[i]);
    }

    napi_value toJs(const Env& env) const {
        std::vector<napi_value> data;
        data.reserve(m_data.size());
        for (const std::string_view text : m_data) data.push_back(env.string(text));
        return env.object({{"spans", env.uint32Array(m_spans)}, {"data", env.array(data)}});
    }

private:
    static constexpr std::size_t kNumbersOfMatch = 3;

    void add(const DictionaryMatch& match) {
        const auto next = static_cast<std::uint32_t>(m_data.size());
        const auto [known, isNew] = m_numbers.emplace(match.data, next);
        if (isNew) m_data.emplace_back(match.data, match.dataLength);
        const auto start = static_cast<std::uint32_t>(match.start);
        const auto length = static_cast<std::uint32_t>(match.length);
        m_spans.insert(m_spans.end(), {start, start + length, known->second});
    }

    Image m_image;  // which holds the data texts
    std::vector<std::uint32_t> m_spans;
    std::vector<std::string_view> m_data;
    std::unordered_map<const char*, std::uint32_t> m_numbers;  // of data texts, by their place
};

// find(image, text): {spans, data}
template <DictionaryFindMode kMode>
Job find(const Call& call) {
    return [image = call.external<Image>(0), text = call.text(1)]() -> Answer {
        const auto found = std::make_shared<const Found>(image, kMode, Utf8Text(text));
        return [found](const Env& env) { return found->toJs(env); };
    };
}

// ---- Building

struct Problem {
    DictionaryProblem problem;
    std::string text;

    napi_value toJs(const Env& env) const {
        constexpr const char* kSeverities[] = {"error", "refused", "warning"};
        return env.object({{"code", env.string(dictionaryProblemName(problem.code))},
                           {"severity", env.string(kSeverities[problem.severity])},
                           {"errno", env.number(problem.systemError)},
                           {"line", env.number(static_cast<double>(problem.line))},
                           {"column", env.number(static_cast<double>(problem.column))},
                           {"text", env.string(text)}});
    }
};

class Build {
public:
    void run(const std::string& source, const std::string& image, DictionaryBuildOptions options) {
        options.size = sizeof options;
        options.onProblem = collect;
        options.context = &m_problems;
        m_report.size = sizeof m_report;
        m_result = dictionaryBuild(source.c_str(), image.c_str(), &options, &m_report);
        // Only want of memory makes `collect` stop a build.
        if (m_result == DICTIONARY_STOPPED) throw std::bad_alloc();
    }

    napi_value toJs(const Env& env) const {
        const auto count = [&](std::uint64_t value) {
            return env.number(static_cast<double>(value));
        };
        std::vector<napi_value> problems;
        for (const Problem& problem : m_problems) problems.push_back(problem.toJs(env));
        return env.object({{"isBuilt", env.boolean(m_result != DICTIONARY_NOT_BUILT)},
                           {"records", count(m_report.records)},
                           {"keys", count(m_report.keys)},
                           {"refused", count(m_report.refused)},
                           {"imageBytes", count(m_report.imageBytes)},
                           {"problemCount", count(m_report.problems)},
                           {"problems", env.array(problems)}});
    }

private:
    static void collect(void* problems, const DictionaryProblem* problem) {
        static_cast<std::vector<Problem>*>(problems)->push_back({*problem, problem->text});
    }

    int m_result = DICTIONARY_NOT_BUILT;
    DictionaryBuildReport m_report = {};
    std::vector<Problem> m_problems;
};

// build(source, image, lenient, fieldSeparator, recordSeparator)
Job build(const Call& call) {
    return [source = call.name(0), image = call.name(1), lenient = call.flag(2),
            field = call.name(3), record = call.name(4)]() -> Answer {
        DictionaryBuildOptions options = {};
        options.lenient = lenient;
        options.fieldSeparator = field.c_str();
        options.recordSeparator = record.c_str();
        const auto result = std::make_shared<Build>();
        result->run(source, image, options);
        return [result](const Env& env) { return result->toJs(env); };
    };
}

// ---- All of it

struct Function {
    const char* name;
    napi_callback callback;
};

constexpr Function kFunctions[] = {{"open", runNow<open>},
                                   {"openLater", runLater<open>},
                                   {"close", direct<close>},
                                   {"lookup", direct<lookup>},
                                   {"has", direct<has>},
                                   {"findAll", runNow<find<DICTIONARY_FIND_ALL>>},
                                   {"findAllLater", runLater<find<DICTIONARY_FIND_ALL>>},
                                   {"findLongest", runNow<find<DICTIONARY_FIND_LONGEST>>},
                                   {"findLongestLater", runLater<find<DICTIONARY_FIND_LONGEST>>},
                                   {"segment", runNow<find<DICTIONARY_FIND_SEGMENT>>},
                                   {"segmentLater", runLater<find<DICTIONARY_FIND_SEGMENT>>},
                                   {"buildLater", runLater<build>}};

void addFunctions(const Env& env, napi_value exports) {
    for (const auto& [name, callback] : kFunctions) {
        napi_value function;
        env.check(napi_create_function(env, name, NAPI_AUTO_LENGTH, callback, nullptr, &function));
        env.check(napi_set_named_property(env, exports, name, function));
    }
    env.check(napi_set_named_property(env, exports, "version", env.string(dictionaryVersion())));
}

}  // namespace

}  // namespace Dictionary::Node

NAPI_MODULE_INIT() {
    using namespace Dictionary::Node;
    return withoutThrowing(env, [&] {
        addFunctions(Env(env), exports);
        return exports;
    });
}
