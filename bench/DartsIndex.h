// darts: a double array over bytes.

#ifndef BENCH_DARTS_INDEX_H
#define BENCH_DARTS_INDEX_H

#include <darts.h>

#include "OtherDictionary.h"

namespace Bench {

class DartsIndex {
public:
    static constexpr const char* kName = "darts";

    void build(Keys& keys) {
        if (m_trie.build(keys.starts.size(), keys.starts.data(), keys.lengths.data(),
                         keys.numbers.data()) != 0) {
            fail("darts refuses its keys");
        }
    }

    void write(std::FILE* file) const {
        std::fwrite(m_trie.array(), m_trie.unit_size(), m_trie.size(), file);
    }

    void attach(char* bytes, std::size_t size) {
        m_trie.set_array(bytes, size / m_trie.unit_size());
    }

    int find(std::string_view key) const {
        return m_trie.exactMatchSearch<int>(key.data(), key.size());
    }

    template <class Emit>
    void prefixes(std::string_view text, Emit emit) const {
        Darts::DoubleArray::result_pair_type found[kMaxFound];
        const std::size_t count =
            m_trie.commonPrefixSearch(text.data(), found, kMaxFound, text.size());
        if (count > kMaxFound) fail("more keys at one place than expected");
        for (std::size_t i = 0; i < count; ++i) emit(found[i].length, found[i].value);
    }

private:
    static constexpr std::size_t kMaxFound = 256;

    Darts::DoubleArray m_trie;
};

}  // namespace Bench

#endif
