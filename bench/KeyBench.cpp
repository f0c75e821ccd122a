// The keys of the real dictionaries: listing them, completing what a user typed, and looking up
// many. A row is named WORKLOAD/DICTIONARY/ENGINE; its items are keys listed, prefixes completed or
// keys looked up. What is found is copied out. Before a row is timed, its results are compared with
// the reference's.
//
//   key_bench [Google Benchmark's options] [DATA FOLDER]

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <set>

#include "DatrieIndex.h"
#include "Digest.h"
#include "FlatHashIndex.h"
#include "KeyLibrary.h"
#include "Library.h"
#include "MapIndex.h"
#include "MarisaIndex.h"
#include "Material.h"

namespace {

using namespace Bench;

constexpr const char* kDictionaries[] = {"chinese", "japanese", "english", "mixed"};

std::string g_data = "build/bench-data";

// What is asked for, in random order.
struct Queries {
    explicit Queries(const std::string& dictionary) {
        Material material(g_data + "/" + dictionary);
        first1 = beginnings(material.keys, 1);
        first2 = beginnings(material.keys, 2);
        first3 = beginnings(material.keys, 3);
        Texts all = std::move(material.keys);
        keyCount = all.size();
        all.insert(all.end(), material.nearMisses.begin(), material.nearMisses.end());
        std::shuffle(all.begin(), all.end(), std::mt19937_64(kSeed));
        mixed = Texts(all);  // the copies are in memory in this order
    }

    std::size_t keyCount;
    Texts everything = {""};       // the prefix of all keys
    Texts first1, first2, first3;  // the first 1, 2 and 3 characters of keys
    Texts mixed;                   // all keys and as many near misses

private:
    static constexpr std::uint64_t kSeed = 2;

    static Texts beginnings(const Texts& keys, std::size_t characters) {
        constexpr std::size_t kMost = 100000;
        Texts texts;
        for (std::size_t i = 0; i < std::min(kMost, keys.size()); ++i) {
            std::size_t end = 0;
            for (std::size_t passed = 0; passed < characters && end < keys[i].size(); ++passed) {
                end = nextCharacter(keys[i], end);
            }
            texts.push_back(keys[i].substr(0, end));
        }
        return texts;
    }
};

const Queries& queriesOf(const std::string& dictionary) {
    static std::map<std::string, Queries> queries;
    return queries.try_emplace(dictionary, dictionary).first->second;
}

template <class T>
struct Type {
    using type = T;
};

std::string imageOf(const std::string& dictionary) {
    const std::string base = g_data + "/" + dictionary;
    Library::buildFile(base + ".tsv", base + ".library");
    return base + ".library";
}

template <class Engine>
Engine made(Type<Engine>, const std::string& dictionary) {
    return Engine(Source(readFile(g_data + "/" + dictionary + ".tsv")).entries());
}

KeyLibrary made(Type<KeyLibrary>, const std::string& dictionary) {
    return KeyLibrary(imageOf(dictionary));
}

// The engine with a dictionary, made at the first call.
template <class Engine>
const Engine& engineOf(const std::string& dictionary) {
    static std::map<std::string, std::unique_ptr<Engine>> engines;
    std::unique_ptr<Engine>& engine = engines[dictionary];
    if (engine == nullptr) engine.reset(new Engine(made(Type<Engine>(), dictionary)));
    return *engine;
}

// The workloads. Each passes what it finds to a receiver.

template <std::size_t kLimit>
struct Listing {
    template <class Engine, class Receiver>
    static void run(const Engine& engine, const Texts& prefixes, Receiver& receiver) {
        std::string key, text;
        for (const std::string& prefix : prefixes) {
            std::size_t left = kLimit;
            engine.keysFrom(prefix, [&](std::string_view foundKey, std::string_view foundText) {
                receiver.add(key.assign(foundKey));
                receiver.add(text.assign(foundText));
                return --left > 0;
            });
        }
    }
};
using ListingAll = Listing<static_cast<std::size_t>(-1)>;
using Completing = Listing<10>;

struct LookingUp {
    template <class Engine, class Receiver>
    static void run(const Engine& engine, const Texts& keys, Receiver& receiver) {
        std::string text;
        engine.lookUpEach(keys, [&](std::string_view found) { receiver.add(text.assign(found)); });
    }
};

template <class Work>
struct Workload {
    const char* name;
    Texts Queries::*inputs;
};

template <class Engine, class Work>
Digest digestOf(const Workload<Work>& workload, const std::string& dictionary) {
    Digest digest;
    Work::run(engineOf<Engine>(dictionary), queriesOf(dictionary).*workload.inputs, digest);
    return digest;
}

// Ends the program unless the engine finds what the reference finds.
template <class Engine, class Reference, class Work>
void checkOnce(const Workload<Work>& workload, const std::string& dictionary) {
    static std::set<std::string> checked;
    const std::string name = std::string(workload.name) + "/" + dictionary;
    if (!checked.insert(name).second) return;
    const Digest expected = digestOf<Reference>(workload, dictionary);
    if (digestOf<Engine>(workload, dictionary) == expected) return;
    fail(name + ": " + Engine::kName + " disagrees with " + Reference::kName);
}

template <class Engine, class Reference, class Work>
void measure(benchmark::State& state, const Workload<Work>& workload,
             const std::string& dictionary) {
    checkOnce<Engine, Reference>(workload, dictionary);
    const Queries& queries = queriesOf(dictionary);
    const Texts& inputs = queries.*workload.inputs;
    Tally tally;
    for (auto _ : state) Work::run(engineOf<Engine>(dictionary), inputs, tally);
    const bool listsAll = workload.inputs == &Queries::everything;
    const std::size_t items = listsAll ? queries.keyCount : inputs.size();
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(items));
}

template <class Run>
void addRow(const std::string& name, const Run& run) {
    benchmark::RegisterBenchmark(name.c_str(), run)->Unit(benchmark::kMillisecond);
}

// Adds the rows of several engines; the first is the reference.
template <class Reference, class... Engines, class Work>
void addRows(const Workload<Work>& workload) {
    for (const std::string dictionary : kDictionaries) {
        const auto add = [&](auto type) {
            using Engine = typename decltype(type)::type;
            addRow(std::string(workload.name) + "/" + dictionary + "/" + Engine::kName,
                   [=](benchmark::State& state) {
                       measure<Engine, Reference>(state, workload, dictionary);
                   });
        };
        add(Type<Reference>());
        (add(Type<Engines>()), ...);
    }
}

std::size_t allocatedBytes() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// What the first cursor of a handle costs. Its items are keys.
void measureIndex(benchmark::State& state, const std::string& dictionary) {
    const std::string image = imageOf(dictionary);
    std::size_t bytes = 0;
    for (auto _ : state) {
        KeyLibrary library(image);
        const std::size_t before = allocatedBytes();
        const auto start = std::chrono::steady_clock::now();
        library.openCursor();
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(time.count());
        bytes = allocatedBytes() - before;
    }
    const auto keys = static_cast<std::int64_t>(queriesOf(dictionary).keyCount);
    state.SetItemsProcessed(state.iterations() * keys);
    state.counters["bytes"] = static_cast<double>(bytes);
}

void addWorkloads() {
    using Map = OtherDictionary<MapIndex>;
    using Marisa = OtherDictionary<MarisaIndexInOrder>;
    using Datrie = OtherDictionary<DatrieIndex>;
    addRows<Map, Marisa, Datrie, KeyLibrary>(
        Workload<ListingAll>{"list-keys", &Queries::everything});
    addRows<Map, Marisa, Datrie, KeyLibrary>(
        Workload<Completing>{"complete-1-character", &Queries::first1});
    addRows<Map, Marisa, Datrie, KeyLibrary>(
        Workload<Completing>{"complete-2-characters", &Queries::first2});
    addRows<Map, Marisa, Datrie, KeyLibrary>(
        Workload<Completing>{"complete-3-characters", &Queries::first3});
    addRows<OtherDictionary<FlatHashIndex>, Map, Marisa, Datrie, KeyLibrary>(
        Workload<LookingUp>{"many-keys", &Queries::mixed});
    for (const std::string dictionary : kDictionaries) {
        const std::string name = "key-index/" + dictionary + "/" + KeyLibrary::kName;
        benchmark::RegisterBenchmark(
            name.c_str(), [=](benchmark::State& state) { measureIndex(state, dictionary); })
            ->Unit(benchmark::kMillisecond)
            ->UseManualTime();
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc > 1) g_data = argv[1];
    addWorkloads();
    benchmark::RunSpecifiedBenchmarks();
}
