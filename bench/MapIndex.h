// std::map: has its keys in order, but no walk along a text.

#ifndef BENCH_MAP_INDEX_H
#define BENCH_MAP_INDEX_H

#include <map>

#include "OtherDictionary.h"

namespace Bench {

class MapIndex {
public:
    static constexpr const char* kName = "map";

    void build(Keys& keys) {
        for (std::size_t i = 0; i < keys.starts.size(); ++i) {
            m_numbers.emplace_hint(m_numbers.end(), std::string(keys.starts[i], keys.lengths[i]),
                                   keys.numbers[i]);
        }
    }

    int find(std::string_view key) const {
        const auto found = m_numbers.find(key);
        return found == m_numbers.end() ? -1 : found->second;
    }

    template <class Emit>
    void keysFrom(std::string_view prefix, Emit emit) const {
        for (auto at = m_numbers.lower_bound(prefix); at != m_numbers.end(); ++at) {
            if (at->first.compare(0, prefix.size(), prefix) != 0) return;
            if (!emit(at->first, at->second)) return;
        }
    }

private:
    std::map<std::string, int, std::less<>> m_numbers;
};

}  // namespace Bench

#endif
