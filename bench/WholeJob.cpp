// One engine's whole build job, from source file to image file, as a process of its own.
//
//   whole_job ENGINE SOURCE IMAGE           builds, prints the process's peak memory in KiB
//   whole_job --in-memory ENGINE SOURCE     the same from keys in memory to an image in memory
//   whole_job --check ENGINE SOURCE IMAGE   checks every key of a built image
//   whole_job --engines                     lists the engines that this machine can run

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

template <class Engine>
void buildInMemory(const std::string& name) {
    Bench::Source source(Bench::readFile(name));
    const Engine engine(source.takeEntries());
}

template <class Engine>
void checkImage(const std::string& name, const std::string& image) {
    Bench::checkKeys(Engine(image), Bench::Source(Bench::readFile(name)).entries());
}

template <class Use>
void forEachKind(Use use) {
    Bench::forEachEngine(use);
    Bench::forEachFurtherKernel(use);
}

int listEngines() {
    forEachKind([](auto type) { std::cout << decltype(type)::type::kName << "\n"; });
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    if (words == std::vector<std::string>{"--engines"}) return listEngines();
    const bool inMemory = !words.empty() && words[0] == "--in-memory";
    const bool check = !words.empty() && words[0] == "--check";
    if (inMemory || check) words.erase(words.begin());
    if (words.size() != (inMemory ? 2u : 3u)) {
        Bench::fail("usage: whole_job [--in-memory | --check] ENGINE SOURCE [IMAGE]");
    }
    forEachKind([&](auto type) {
        using Engine = typename decltype(type)::type;
        if (words[0] != Engine::kName) return;
        const Bench::InUse<Engine> inUse;
        if (inMemory) return buildInMemory<Engine>(words[1]);
        if (check) return checkImage<Engine>(words[1], words[2]);
        Engine::buildFile(words[1], words[2]);
    });
    std::cout << peakKibibytes() << "\n";
}
