// What the fuzz targets share. A target is a file of its own that defines LLVMFuzzerTestOneInput:
// libFuzzer calls it with inputs that it makes up, Replay.cpp with those of the stored corpus.

#ifndef FUZZ_FUZZ_H
#define FUZZ_FUZZ_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// Ends the process if a promise is broken, which is how a target reports what it found.
inline void require(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}

// Drops what the library prints to standard output; findings go to standard error.
inline void muteOutput() {
    static const bool muted = std::freopen("/dev/null", "w", stdout) != nullptr;
    require(muted, "standard output can be muted");
}

inline std::vector<std::string> split(const std::string& text, const std::string& separator) {
    std::vector<std::string> pieces;
    std::size_t from = 0;
    for (std::size_t to; (to = text.find(separator, from)) != std::string::npos;) {
        pieces.push_back(text.substr(from, to - from));
        from = to + separator.size();
    }
    pieces.push_back(text.substr(from));
    return pieces;
}

// An input that is taken piece by piece from its front. After its end, byte() returns 0.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : m_rest(reinterpret_cast<const char*>(data), size) {}

    bool isEmpty() const { return m_rest.empty(); }

    std::uint8_t byte() {
        const std::string taken = text(1);
        return taken.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(taken[0]);
    }
    std::size_t below(std::size_t bound) { return byte() % bound; }

    std::string text(std::size_t size) {
        const std::string taken = m_rest.substr(0, size);
        m_rest.erase(0, size);
        return taken;
    }
    // Up to the next `end`, which is dropped.
    std::string textBefore(char end) {
        const std::string taken = text(std::min(m_rest.find(end), m_rest.size()));
        m_rest.erase(0, 1);
        return taken;
    }
    std::string rest() { return text(m_rest.size()); }

private:
    std::string m_rest;
};

#endif
