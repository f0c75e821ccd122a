// absl::flat_hash_map: finds whole keys only. The bytes of all keys are in one string beside it.

#ifndef BENCH_FLAT_HASH_INDEX_H
#define BENCH_FLAT_HASH_INDEX_H

#include <absl/container/flat_hash_map.h>

#include "OtherDictionary.h"

namespace Bench {

class FlatHashIndex {
public:
    static constexpr const char* kName = "flat_hash_map";

    void build(Keys& keys) {
        std::size_t bytes = 0;
        for (const std::size_t length : keys.lengths) bytes += length;
        m_own.reserve(bytes);
        m_numbers.reserve(keys.starts.size());
        for (std::size_t i = 0; i < keys.starts.size(); ++i) {
            const std::size_t start = m_own.size();
            m_own.append(keys.starts[i], keys.lengths[i]);
            m_numbers.emplace(std::string_view(m_own.data() + start, keys.lengths[i]),
                              keys.numbers[i]);
        }
    }

    int find(std::string_view key) const {
        const auto found = m_numbers.find(key);
        return found == m_numbers.end() ? -1 : found->second;
    }

private:
    std::string m_own;  // the keys' bytes
    absl::flat_hash_map<std::string_view, int> m_numbers;
};

}  // namespace Bench

#endif
