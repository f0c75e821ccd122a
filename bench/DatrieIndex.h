// libdatrie: an updatable double array with a compressed tail, here over bytes.

#ifndef BENCH_DATRIE_INDEX_H
#define BENCH_DATRIE_INDEX_H

#include <datrie/trie.h>

#include <memory>

#include "OtherDictionary.h"

namespace Bench {

class DatrieIndex {
public:
    static constexpr const char* kName = "libdatrie";

    void build(Keys& keys) {
        const std::unique_ptr<AlphaMap, Release> alphabet(alpha_map_new());
        alpha_map_add_range(alphabet.get(), kFirstByte, kLastByte);
        m_trie.reset(trie_new(alphabet.get()));
        for (std::size_t i = 0; i < keys.starts.size(); ++i) {
            const AlphaChar* key = widened({keys.starts[i], keys.lengths[i]});
            if (!trie_store(m_trie.get(), key, keys.numbers[i])) fail("libdatrie refuses a key");
        }
        m_root.reset(trie_root(m_trie.get()));
    }

    void write(std::FILE* file) const { trie_fwrite(m_trie.get(), file); }

    void attach(char* bytes, std::size_t size) {
        std::FILE* file = fmemopen(bytes, size, "rb");
        m_trie.reset(trie_fread(file));
        std::fclose(file);
        if (m_trie == nullptr) fail("libdatrie refuses its file");
        m_root.reset(trie_root(m_trie.get()));
    }

    int find(std::string_view key) const {
        TrieData number;
        return trie_retrieve(m_trie.get(), widened(key), &number) ? number : -1;
    }

    template <class Emit>
    void prefixes(std::string_view text, Emit emit) const {
        thread_local const std::unique_ptr<TrieState, Release> state(
            trie_state_clone(m_root.get()));
        trie_state_copy(state.get(), m_root.get());
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (!trie_state_walk(state.get(), static_cast<unsigned char>(text[i]))) return;
            if (!trie_state_is_terminal(state.get())) continue;
            emit(i + 1, trie_state_get_data(state.get()));
        }
    }

    template <class Emit>
    void keysFrom(std::string_view prefix, Emit emit) const {
        const std::unique_ptr<TrieState, Release> state(trie_state_clone(m_root.get()));
        for (const char byte : prefix) {
            if (!trie_state_walk(state.get(), static_cast<unsigned char>(byte))) return;
        }
        const std::unique_ptr<TrieIterator, Release> keys(trie_iterator_new(state.get()));
        std::string text(prefix);
        while (trie_iterator_next(keys.get())) {
            const std::unique_ptr<AlphaChar, Release> rest(trie_iterator_get_key(keys.get()));
            text.resize(prefix.size());
            for (const AlphaChar* byte = rest.get(); *byte != 0; ++byte) {
                text += static_cast<char>(*byte);
            }
            if (!emit(text, trie_iterator_get_data(keys.get()))) return;
        }
    }

private:
    static constexpr AlphaChar kFirstByte = 0x01;
    static constexpr AlphaChar kLastByte = 0xF4;  // of UTF-8

    struct Release {
        void operator()(AlphaMap* alphabet) const { alpha_map_free(alphabet); }
        void operator()(Trie* trie) const { trie_free(trie); }
        void operator()(TrieState* state) const { trie_state_free(state); }
        void operator()(TrieIterator* keys) const { trie_iterator_free(keys); }
        void operator()(AlphaChar* text) const { std::free(text); }
    };

    // Valid until the thread's next call.
    static const AlphaChar* widened(std::string_view key) {
        thread_local std::vector<AlphaChar> characters;
        characters.assign(key.size() + 1, 0);
        std::transform(key.begin(), key.end(), characters.begin(),
                       [](char byte) { return static_cast<unsigned char>(byte); });
        return characters.data();
    }

    std::unique_ptr<Trie, Release> m_trie;
    std::unique_ptr<TrieState, Release> m_root;
};

}  // namespace Bench

#endif
