// Building in memory, from keys and texts to the finished image, engine by engine. A row is named
// build/KEYS/ENGINE; its items are keys. Before a row is timed, every key is looked up once.
//
//   build_bench [Google Benchmark's options] [DATA FOLDER]

#include <benchmark/benchmark.h>

#include <random>

#include "Engines.h"

namespace {

using namespace Bench;

std::string g_data = "build/bench-data";

constexpr int kFirstIdeograph = 0x4E00;

std::string utf8(int code) {
    char bytes[4];
    const int length = Dictionary::CUTF8Coder().decode(code, bytes, sizeof bytes);
    return {bytes, static_cast<std::size_t>(length)};
}

std::string fromFile(const std::string& name) {
    return readFile(g_data + "/" + name + ".tsv");
}

// One first character with a thousand children, each of which has a thousand children.
std::string oneParent(const std::string&) {
    constexpr int kFanOut = 1000;
    std::string source;
    for (int i = 0; i < kFanOut * kFanOut; ++i) {
        source += utf8(kFirstIdeograph) + utf8(kFirstIdeograph + i / kFanOut) +
                  utf8(kFirstIdeograph + i % kFanOut) + "\tx\n";
    }
    return source;
}

std::string longKeys(const std::string&) {
    constexpr int kKeys = 100;
    constexpr int kCharacters = 20000;
    std::mt19937 random;
    std::string source;
    for (int i = 0; i < kKeys * kCharacters; ++i) {
        source += utf8(kFirstIdeograph + static_cast<int>(random() % kCharacters));
        if ((i + 1) % kCharacters == 0) source += "\tx\n";
    }
    return source;
}

std::string firstCharacters(const std::string&) {
    constexpr int kCount = 60000;
    constexpr int kSurrogates = 0xD800;
    constexpr int kSurrogatesEnd = 0xE000;
    std::string source;
    for (int i = 0, code = ' '; i < kCount; ++i, ++code) {
        if (code == kSurrogates) code = kSurrogatesEnd;
        source += utf8(code) + "a\tx\n";
    }
    return source;
}

struct Set {
    const char* name;
    std::string (*source)(const std::string& name) = fromFile;
    bool falling = false;      // keys come in descending order
    const char* leftOut = "";  // engines that cannot do it
};

constexpr Set kSets[] = {
    {"chinese"},
    {"japanese"},
    {"english"},
    {"mixed"},
    {"growth-10000"},
    {"growth-100000"},
    {"growth-1000000"},
    {"growth-4000000"},
    {"one-parent", oneParent},
    // darts recurses once per byte. libdatrie loses the data of key endings past 32 KiB.
    {"long-keys", longKeys, false, "darts libdatrie"},
    {"first-characters", firstCharacters},
    {"falling", [](const std::string&) { return fromFile("mixed"); }, true},
};

// The set's entries; valid until another set is asked for.
const std::vector<Entry>& entriesOf(const Set& set) {
    static std::optional<Source> source;
    static std::vector<Entry> entries;
    static const char* current = nullptr;
    if (current != set.name) {
        entries = source.emplace(set.source(set.name)).takeEntries();
        if (set.falling) std::reverse(entries.begin(), entries.end());
        current = set.name;
    }
    return entries;
}

template <class Engine>
void measure(benchmark::State& state, const Set& set) {
    const InUse<Engine> inUse;
    const std::vector<Entry>& entries = entriesOf(set);
    static const char* checked = nullptr;
    if (checked != set.name) checkKeys(Engine(entries), entries);
    checked = set.name;
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<Entry> own(entries);
        state.ResumeTiming();
        const Engine engine(std::move(own));
        benchmark::DoNotOptimize(&engine);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(entries.size()));
}

void addRows(const Set& set) {
    const auto add = [&](auto type) {
        using Engine = typename decltype(type)::type;
        if (std::strstr(set.leftOut, Engine::kName) != nullptr) return;
        const std::string name = std::string("build/") + set.name + "/" + Engine::kName;
        benchmark::RegisterBenchmark(name.c_str(), [&set](benchmark::State& state) {
            measure<Engine>(state, set);
        })->Unit(benchmark::kMillisecond);
    };
    forEachEngine(add);
    forEachFurtherKernel(add);
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (argc > 1) g_data = argv[1];
    for (const Set& set : kSets) addRows(set);
    benchmark::RunSpecifiedBenchmarks();
}
