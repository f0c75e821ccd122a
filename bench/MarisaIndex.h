// marisa: a succinct, recursive Patricia trie over bytes. It numbers its keys in its own way.

#ifndef BENCH_MARISA_INDEX_H
#define BENCH_MARISA_INDEX_H

#include <marisa.h>

#include "OtherDictionary.h"

namespace Bench {

// Its keys are listed in order only if its nodes were laid out in the order of their labels.
template <int kNodeOrder>
class MarisaIndexIn {
public:
    static constexpr const char* kName = "marisa";

    void build(Keys& keys) {
        marisa::Keyset set;
        for (std::size_t i = 0; i < keys.starts.size(); ++i) {
            set.push_back(keys.starts[i], keys.lengths[i]);
        }
        m_trie.build(set, kNodeOrder);
        m_own.resize(set.size() + set.size() % 2);  // the trie after them is aligned to eight bytes
        for (std::size_t i = 0; i < set.size(); ++i) m_own[set[i].id()] = keys.numbers[i];
        m_numbers = m_own.data();
    }

    void write(std::FILE* file) const {
        const std::uint64_t count = m_own.size();
        std::fwrite(&count, sizeof count, 1, file);
        std::fwrite(m_own.data(), sizeof(int), m_own.size(), file);
        marisa::fwrite(file, m_trie);
    }

    void attach(char* bytes, std::size_t size) {
        std::uint64_t count;
        std::memcpy(&count, bytes, sizeof count);
        m_numbers = reinterpret_cast<int*>(bytes + sizeof count);
        const std::size_t before = sizeof count + count * sizeof(int);
        m_trie.map(bytes + before, size - before);
    }

    int find(std::string_view key) const {
        marisa::Agent& agent = ofThread();
        agent.set_query(key.data(), key.size());
        return m_trie.lookup(agent) ? m_numbers[agent.key().id()] : -1;
    }

    template <class Emit>
    void prefixes(std::string_view text, Emit emit) const {
        marisa::Agent& agent = ofThread();
        agent.set_query(text.data(), text.size());
        while (m_trie.common_prefix_search(agent)) {
            emit(agent.key().length(), m_numbers[agent.key().id()]);
        }
    }

    template <class Emit>
    void keysFrom(std::string_view prefix, Emit emit) const {
        marisa::Agent& agent = ofThread();
        agent.set_query(prefix.data(), prefix.size());
        while (m_trie.predictive_search(agent)) {
            const marisa::Key& key = agent.key();
            if (!emit({key.ptr(), key.length()}, m_numbers[key.id()])) return;
        }
    }

private:
    // An agent allocates when it is first used, so each thread keeps its own.
    static marisa::Agent& ofThread() {
        thread_local marisa::Agent agent;
        return agent;
    }

    marisa::Trie m_trie;
    std::vector<int> m_own;
    const int* m_numbers = nullptr;  // by key id
};

using MarisaIndex = MarisaIndexIn<MARISA_DEFAULT_ORDER>;
using MarisaIndexInOrder = MarisaIndexIn<MARISA_LABEL_ORDER>;

}  // namespace Bench

#endif
