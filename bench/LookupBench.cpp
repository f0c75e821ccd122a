// Every lookup, engine by engine, over the real dictionaries. A row is named
// WORKLOAD/DICTIONARY/ENGINE; its items are lookups (keys, lines or texts), its bytes those of
// their inputs. Before a row is timed, its results are compared with the reference's.
//
//   lookup_bench [Google Benchmark's options] [DATA FOLDER]

#include <map>
#include <mutex>
#include <set>

#include "Digest.h"
#include "Engines.h"
#include "Material.h"

namespace {

using namespace Bench;

constexpr const char* kDictionaries[] = {"chinese", "japanese", "english", "mixed"};

std::string g_data = "build/bench-data";

// An engine at work: its file, and the results that a host keeps from one call to the next.
template <class EngineType>
struct Subject {
    using Engine = EngineType;

    const Engine& engine;
    const std::string& file;
    const Texts& inputs;
    Matches matches;
    std::string text;
};

// The lookups. Each hands its result for one input to a receiver.

struct Exact {
    template <class AnySubject, class Receiver>
    static void run(AnySubject& subject, const std::string& key, Receiver& receiver) {
        subject.engine.exact(key, subject.text);
        receiver.add(subject.text);
    }
};

struct EveryMatch {
    template <class AnySubject, class Receiver>
    static void run(AnySubject& subject, const std::string& text, Receiver& receiver) {
        subject.matches.clear();
        subject.engine.everyMatch(text, subject.matches);
        receiver.add(subject.engine, subject.matches);
    }
};

struct LongestMatch {
    template <class AnySubject, class Receiver>
    static void run(AnySubject& subject, const std::string& text, Receiver& receiver) {
        subject.matches.clear();
        subject.engine.longestMatch(text, subject.matches);
        receiver.add(subject.engine, subject.matches);
    }
};

template <bool kWithFeatures>
struct Search {
    template <class AnySubject, class Receiver>
    static void run(AnySubject& subject, const std::string& text, Receiver& receiver) {
        receiver.add(subject.engine.search(text, kWithFeatures));
    }
};

struct FirstAnswer {
    template <class AnySubject, class Receiver>
    static void run(AnySubject& subject, const std::string& text, Receiver& receiver) {
        receiver.add(AnySubject::Engine::firstAnswer(subject.file, text));
    }
};

template <class Lookup>
struct Workload {
    const char* name;
    Texts Material::*inputs;
    bool byKernel = false;  // whether it depends on the kernel
    int threads = 1;
};

template <class Lookup, class Engine, class Receiver>
void pass(Subject<Engine>& subject, Receiver& receiver) {
    for (const std::string& input : subject.inputs) Lookup::run(subject, input, receiver);
}

const Material& materialOf(const std::string& dictionary) {
    static std::map<std::string, Material> materials;
    return materials.try_emplace(dictionary, g_data + "/" + dictionary).first->second;
}

// The engine with a dictionary, built and loaded at the first call.
template <class Engine, class Lookup>
Subject<Engine> subjectOf(const Workload<Lookup>& workload, const std::string& dictionary) {
    static std::map<std::string, Engine> engines;
    const std::string base = g_data + "/" + dictionary;
    const std::string file = base + "." + Engine::kName;
    auto found = engines.find(file);
    if (found == engines.end()) {
        Engine::buildFile(base + ".tsv", file);
        found = engines.try_emplace(file, file).first;
    }
    return {found->second, found->first, materialOf(dictionary).*workload.inputs, {}, {}};
}

template <class Engine, class Lookup>
Digest digestOf(const Workload<Lookup>& workload, const std::string& dictionary) {
    Subject<Engine> subject = subjectOf<Engine>(workload, dictionary);
    Digest digest;
    pass<Lookup>(subject, digest);
    return digest;
}

template <class Lookup>
const Digest& expectedOf(const Workload<Lookup>& workload, const std::string& dictionary) {
    static std::map<std::string, Digest> known;
    const auto [found, isNew] = known.try_emplace(std::string(workload.name) + "/" + dictionary);
    if (isNew) found->second = digestOf<Reference>(workload, dictionary);
    return found->second;
}

// Ends the program unless the engine finds what the reference finds.
template <class Engine, class Lookup>
void checkOnce(const Workload<Lookup>& workload, const std::string& dictionary) {
    static std::set<std::string> checked;
    const std::string name = std::string(workload.name) + "/" + dictionary;
    if (!checked.insert(name).second) return;
    if (digestOf<Engine>(workload, dictionary) == expectedOf(workload, dictionary)) return;
    fail(name + ": " + Engine::kName + " disagrees with " + Reference::kName);
}

template <class Engine, class Lookup>
Subject<Engine> prepare(const Workload<Lookup>& workload, const std::string& dictionary) {
    static std::mutex oneAtATime;
    const std::lock_guard<std::mutex> lock(oneAtATime);
    checkOnce<Engine>(workload, dictionary);
    return subjectOf<Engine>(workload, dictionary);
}

void countVolume(benchmark::State& state, const Texts& inputs) {
    std::size_t bytes = 0;
    for (const std::string& input : inputs) bytes += input.size();
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(inputs.size()));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

template <class Engine, class Lookup>
void measure(benchmark::State& state, const Workload<Lookup>& workload,
             const std::string& dictionary) {
    const InUse<Engine> inUse;
    Subject<Engine> subject = prepare<Engine>(workload, dictionary);
    Tally tally;
    for (auto _ : state) pass<Lookup>(subject, tally);
    countVolume(state, subject.inputs);
}

template <class Lookup>
void addRows(const Workload<Lookup>& workload) {
    for (const std::string dictionary : kDictionaries) {
        const auto add = [&](auto type) {
            using Engine = typename decltype(type)::type;
            const std::string name =
                std::string(workload.name) + "/" + dictionary + "/" + Engine::kName;
            const auto run = [=](benchmark::State& state) {
                measure<Engine>(state, workload, dictionary);
            };
            auto* row = benchmark::RegisterBenchmark(name.c_str(), run);
            row->Unit(benchmark::kMillisecond);
            if (workload.threads != 1) row->Threads(workload.threads)->UseRealTime();
        };
        forEachEngine(add);
        if (workload.byKernel) forEachFurtherKernel(add);
    }
}

void addWorkloads() {
    addRows<Exact>({"exact-hits", &Material::keys});
    addRows<Exact>({"exact-near-misses", &Material::nearMisses});
    addRows<EveryMatch>({"every-match-by-line", &Material::lines, true});
    addRows<EveryMatch>({"every-match-whole-text", &Material::whole, true});
    addRows<LongestMatch>({"longest-match", &Material::lines});
    addRows<Search<false>>({"search", &Material::lines, true});
    addRows<Search<true>>({"search-with-features", &Material::lines, true});
    addRows<Search<true>>({"search-2-threads", &Material::lines, false, 2});
    addRows<Search<true>>({"search-4-threads", &Material::lines, false, 4});
    addRows<FirstAnswer>({"first-answer", &Material::aKey});
}

// The coder alone, over `length` bytes of characters that all take `bytesEach` bytes.

std::string charactersOf(std::size_t bytesEach, std::size_t length) {
    std::string text;
    for (const char* dictionary : {"english", "chinese"}) {
        const std::string& prose = materialOf(dictionary).whole.front();
        for (std::size_t at = 0, next; at < prose.size() && text.size() < length; at = next) {
            next = nextCharacter(prose, at);
            if (next - at == bytesEach) text.append(prose, at, bytesEach);
        }
    }
    return text;
}

void encode(const std::string& text, std::vector<int>& codes, Matches& positions) {
    codes.clear();
    positions.clear();
    Dictionary::CUTF8Coder().encodeString(text.c_str(), codes, positions, -1);
}

// Ends the program unless the text comes back from its codes, character by character.
void checkCoder(const std::string& text, std::size_t bytesEach) {
    std::vector<int> codes;
    Matches positions;
    encode(text, codes, positions);
    std::string back;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        char bytes[4];
        const int length = Dictionary::CUTF8Coder().decode(codes[i], bytes, sizeof bytes);
        back.append(bytes, static_cast<std::size_t>(length));
        if (positions.at(i).start != static_cast<int>(i * bytesEach)) fail("a character is off");
    }
    if (back != text) fail("the coder loses its text");
}

void measureCoder(benchmark::State& state, std::size_t bytesEach, std::size_t length) {
    const std::string text = charactersOf(bytesEach, length);
    checkCoder(text, bytesEach);
    std::vector<int> codes;
    Matches positions;
    for (auto _ : state) {
        encode(text, codes, positions);
        benchmark::ClobberMemory();
    }
    countVolume(state, {text});
}

void addCoderRows() {
    for (const std::size_t bytesEach : {1u, 3u}) {
        for (const std::size_t kibibytes : {4u, 1024u}) {
            const std::string name = "encode/" + std::to_string(bytesEach) + "-byte-" +
                                     std::to_string(kibibytes) + "-KiB/library";
            benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
                measureCoder(state, bytesEach, kibibytes * 1024);
            });
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc > 1) g_data = argv[1];
    addWorkloads();
    addCoderRows();
    benchmark::RunSpecifiedBenchmarks();
}
