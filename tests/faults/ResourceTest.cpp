// Thousands of loads, searches and builds. Memory and descriptors stay as they are, except for what
// the plain functions are known to keep, which is counted.

#include <algorithm>
#include <cstdlib>

#include "DATInterface.h"
#include "Dictionary.h"
#include "Faults.h"
#include "TemporaryFile.h"

namespace {

constexpr char kText[] = "ab中文 and longer texts, 中文 again";

// Rounds of loads; DICTIONARY_ROUNDS sets another number for long runs.
int rounds() {
    const char* const given = std::getenv("DICTIONARY_ROUNDS");
    return given == nullptr ? 300 : std::atoi(given);
}

constexpr int kBuildsIn = 10;   // one build for so many rounds
constexpr int kFewRounds = 20;  // for what keeps something

struct Resources {
    long allocations = liveAllocations();
    long descriptors = openDescriptors();
    long mappings = countLines("/proc/self/maps");

    static long countLines(const char* path) {
        std::ifstream file(path);
        return std::count(std::istreambuf_iterator<char>(file), {}, '\n');
    }
};

struct Kept {
    long allocations, descriptors;
};

// Expects that `action` leaves `kept` in use, each time.
template <typename Action>
void expectKept(const char* name, int times, Kept kept, const Action& action) {
    printedBy(action);
    const Resources before;
    printedBy([&] {
        for (int i = 0; i < times; ++i) action();
    });
    const Resources after;
    EXPECT_EQ(after.allocations - before.allocations, kept.allocations * times) << name;
    EXPECT_EQ(after.descriptors - before.descriptors, kept.descriptors * times) << name;
    // The allocator may have taken a few more pieces of memory.
    EXPECT_LE(after.mappings - before.mappings, 8) << name;
}

void searchManyTimes(void* handle) {
    for (int i = 0; i < 50; ++i) freeResult(search(kText, handle, true));
    destroyBin(handle);
}

void findManyTimes(DictionaryHandle* handle) {
    DictionaryMatches matches = {};
    for (int i = 0; i < 50; ++i) {
        dictionaryFindMatches(handle, nullptr, {kText, sizeof kText - 1}, &matches, nullptr);
    }
    dictionaryFreeMatches(&matches);
    searchManyTimes(handle);
}

TEST(Resource, StayAsTheyAreOverLoadsAndSearches) {
    const TemporaryFile source("ab\t1\n中文\t2\n"), image, empty;
    dictionaryBuildFile(source.path(), image.path(), nullptr, nullptr, nullptr);
    expectKept("loadBin", rounds(), {0, 0}, [&] { searchManyTimes(loadBin(image.path())); });
    for (const int mode : {DICTIONARY_OPEN_MAP, DICTIONARY_OPEN_COPY, DICTIONARY_OPEN_SHARE}) {
        expectKept("dictionaryOpenFile", rounds(), {0, 0},
                   [&] { findManyTimes(dictionaryOpenFile(image.path(), mode, nullptr)); });
    }
    expectKept("refused image", rounds(), {0, 0},
               [&] { dictionaryOpenFile(empty.path(), DICTIONARY_OPEN_MAP, nullptr); });
    expectKept("missing image", rounds(), {0, 0}, [] { destroyBin(loadBin("/no/such/image")); });
    expectKept("failed mapping", kFewRounds, {0, 1}, [&] { destroyBin(loadBin(empty.path())); });
}

TEST(Resource, StayAsTheyAreOverBuilds) {
    const TemporaryFile good("ab\t1\n"), bad("ab\t1\nnone\n"), image;
    expectKept("checked", rounds() / kBuildsIn, {0, 0},
               [&] { dictionaryBuildFile(good.path(), image.path(), nullptr, nullptr, nullptr); });
    expectKept("refused", rounds() / kBuildsIn, {0, 0},
               [&] { dictionaryBuildFile(bad.path(), image.path(), nullptr, nullptr, nullptr); });
    expectKept("plain", kFewRounds, {0, 1}, [&] { buildTree(good.path(), image.path()); });
    // The record reader is kept, with its three buffers and its source.
    expectKept("stopped", kFewRounds, {4, 1}, [&] { buildTree(bad.path(), image.path()); });
}

}  // namespace
