// Two receivers for what a workload finds. The one for timing only keeps the compiler from dropping
// it. The other one sums it up, so that engines can be compared.

#ifndef BENCH_DIGEST_H
#define BENCH_DIGEST_H

#include <benchmark/benchmark.h>

#include <functional>

#include "OtherDictionary.h"

namespace Bench {

class Tally {
public:
    template <class Result>
    void add(const Result& result) {
        benchmark::DoNotOptimize(&result);
        benchmark::ClobberMemory();
    }

    template <class Engine>
    void add(const Engine&, const Matches& matches) {
        add(matches);
    }
};

class Digest {
public:
    void add(std::string_view text) {
        mix(std::hash<std::string_view>()(text));
        ++m_count;
    }

    template <class Engine>
    void add(const Engine& engine, const Matches& matches) {
        for (const Dictionary::SPOS& match : matches) {
            mix(static_cast<std::size_t>(match.start));
            mix(static_cast<std::size_t>(match.end - match.start));
            add(engine.featureText(match.feature));
        }
    }

    bool operator==(const Digest& other) const {
        return m_count == other.m_count && m_sum == other.m_sum;
    }

private:
    void mix(std::size_t value) { m_sum = (m_sum ^ value) * kPrime + 1; }

    static constexpr std::size_t kPrime = 0x9E3779B97F4A7C15;  // odd, bits well spread

    std::size_t m_count = 0;  // of texts
    std::size_t m_sum = 0;
};

}  // namespace Bench

#endif
