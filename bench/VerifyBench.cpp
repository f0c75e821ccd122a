// Measures how long it takes to open an image, which verifies it, beside reading its file once.
// Also measures each pass that every verification needs, alone and with the least work. Their sum
// is the least that opening can take. A row is named PASS/DICTIONARY.
//
//   verify_bench [Google Benchmark's options] [DATA FOLDER]

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <map>

#include "Dictionary.h"
#include "Library.h"
#include "Mapping.h"

namespace {

using namespace Bench;
using namespace Dictionary;

constexpr const char* kDictionaries[] = {"chinese", "japanese", "english", "mixed"};

std::string g_data = "build/bench-data";

// A dictionary's image file, and its parts in memory.
struct Image {
    explicit Image(const std::string& base) : path(base + ".library") {
        Library::buildFile(base + ".tsv", path);
    }

    const std::string path;
    const Mapping mapping{path};
    const ImageView view{mapping.data()};
    const CellView cells = view.cells();
    const std::uint32_t count = cells.firstLimit();
    const std::string_view records = view.featureArea();
};

const Image& imageOf(const std::string& dictionary) {
    static std::map<std::string, Image> images;
    return images.try_emplace(dictionary, g_data + "/" + dictionary).first->second;
}

// Each pass returns a number that depends on everything that it read.
using Pass = std::int64_t (*)(const Image& image);

std::int64_t openImage(const Image& image) {
    DictionaryHandle* const handle =
        dictionaryOpenFile(image.path.c_str(), DICTIONARY_OPEN_MAP, nullptr);
    if (handle == nullptr) fail("the image does not open");
    dictionaryClose(handle);
    return 0;
}

std::int64_t openByPlainLoops(const Image& image) {
    const ForcedKernel forced(kBaseline);
    return openImage(image);
}

std::int64_t readImage(const Image& image) {
    static char buffer[1 << 16];
    const int file = open(image.path.c_str(), O_RDONLY | O_CLOEXEC);
    std::int64_t bytes = 0;
    for (ssize_t got; (got = read(file, buffer, sizeof buffer)) > 0;) bytes += got;
    close(file);
    return bytes;
}

// All three words of each cell, in order.
std::int64_t readCells(const Image& image) {
    const auto limit = static_cast<std::int32_t>(image.count);
    std::int64_t inside = 0;
    for (std::uint32_t index = 1; index < image.count; ++index) {
        const Cell cell = image.cells[index];
        inside += (cell.base < limit) & (cell.check < limit) & (cell.feature >= kNoFeature);
    }
    return inside;
}

// For each cell, the cell of its parent, wherever that is.
std::int64_t readParents(const Image& image) {
    constexpr std::uint32_t kAhead = 64;
    const auto parentOf = [&](std::uint32_t index) {
        return std::max(image.cells.checkOf(index), 0);
    };
    std::int64_t labels = 0;
    for (std::uint32_t index = 1; index < image.count; ++index) {
        const std::uint32_t ahead = std::min(index + kAhead, image.count - 1);
        __builtin_prefetch(image.cells.bytes() + std::int64_t{parentOf(ahead)} * kCellBytes);
        labels += index - childIndex(image.cells[parentOf(index)], 0);
    }
    return labels;
}

std::size_t bitOf(std::int64_t feature) {
    return static_cast<std::size_t>(feature - kNoFeature);
}

// A bit for each feature that a cell may have.
std::vector<bool> bitsOf(const Image& image) {
    constexpr std::size_t kAhead = 4096;
    const std::string_view area = image.records;
    std::vector<bool> bits(area.size() + 1);
    bits[bitOf(kNoFeature)] = true;
    forEachRecord(area, [&](std::size_t offset, std::size_t) {
        __builtin_prefetch(area.data() + std::min(offset + kAhead, area.size()));
        bits[bitOf(static_cast<std::int64_t>(offset))] = true;
    });
    return bits;
}

std::int64_t readRecords(const Image& image) {
    return bitsOf(image).front();
}

// For each cell, the bit of its feature.
std::int64_t readFeatures(const Image& image) {
    static std::map<const Image*, std::vector<bool>> all;
    std::vector<bool>& bits = all[&image];
    if (bits.empty()) bits = bitsOf(image);
    std::int64_t features = 0;
    for (std::uint32_t index = 1; index < image.count; ++index) {
        features += bits[bitOf(image.cells.featureOf(index))];
    }
    return features;
}

constexpr std::pair<const char*, Pass> kPasses[] = {
    {"open", openImage},        {"open-baseline", openByPlainLoops},
    {"read", readImage},        {"cells", readCells},
    {"parents", readParents},   {"records", readRecords},
    {"features", readFeatures},
};

void measure(benchmark::State& state, Pass pass, const std::string& dictionary) {
    const Image& image = imageOf(dictionary);
    benchmark::DoNotOptimize(pass(image));
    for (auto _ : state) benchmark::DoNotOptimize(pass(image));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(image.mapping.size()));
}

}  // namespace

int main(int count, char** arguments) {
    for (const char* dictionary : kDictionaries) {
        for (const auto& [name, pass] : kPasses) {
            const auto run = [=, pass = pass](benchmark::State& state) {
                measure(state, pass, dictionary);
            };
            benchmark::RegisterBenchmark((std::string(name) + "/" + dictionary).c_str(), run)
                ->Unit(benchmark::kMicrosecond);
        }
    }
    benchmark::Initialize(&count, arguments);
    if (count > 1) g_data = arguments[1];
    benchmark::RunSpecifiedBenchmarks();
}
