// One engine's whole build job, from source file to image file, as a process of its own.
//
//   whole_job ENGINE SOURCE IMAGE           builds, prints the process's peak memory in KiB
//   whole_job --check ENGINE SOURCE IMAGE   checks every key of a built image

#include <fstream>
#include <iostream>

#include "Engines.h"

namespace {

// The high-water mark of this program's own memory. What wait4 and getrusage report begins with
// the memory of the process that started this one.
std::string peakKibibytes() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word && word != "VmHWM:") {
    }
    status >> word;
    return word;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    const bool check = !words.empty() && words[0] == "--check";
    if (words.size() != (check ? 4u : 3u)) Bench::fail("usage: [--check] ENGINE SOURCE IMAGE");
    const std::string* const names = &words[check ? 1 : 0];
    Bench::forEachEngine([&](auto type) {
        using Engine = typename decltype(type)::type;
        if (names[0] != Engine::kName) return;
        if (!check) return Engine::buildFile(names[1], names[2]);
        Bench::checkKeys(Engine(names[2]), Bench::Source(Bench::readFile(names[1])).entries());
    });
    std::cout << peakKibibytes() << "\n";
}
