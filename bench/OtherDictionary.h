// A dictionary over another library's trie or map: the whole build job and every lookup. It is one
// template over the index, so that all other libraries are used alike.
//
// An index maps keys to numbers that are not negative and offers
//
//   static constexpr const char* kName;
//   void build(Keys& keys);                                  keys ascending, each once
//   void write(std::FILE* file) const;
//   void attach(char* bytes, std::size_t size);              what write wrote; it stays in place
//   int find(std::string_view key) const;                    -1 when there is no such key
//   void prefixes(std::string_view text, Emit emit) const;   emit(length, number) for every key
//                                                            that begins text, shortest first
//   void keysFrom(std::string_view prefix, Emit emit) const; emit(key, number) for every key that
//                                                            begins with prefix, in order, until it
//                                                            returns false
//
// An index has only those of these lookups that are measured. The bytes for attach are aligned to
// kAlignment. Lookups may run concurrently.

#ifndef BENCH_OTHER_DICTIONARY_H
#define BENCH_OTHER_DICTIONARY_H

#include <cstdint>
#include <cstring>
#include <optional>
#include <unordered_map>

#include "Mapping.h"
#include "Source.h"
#include "UTF8Coder.h"

namespace Bench {

using Matches = std::vector<Dictionary::SPOS>;

// Columns of equal length.
struct Keys {
    std::vector<const char*> starts;
    std::vector<std::size_t> lengths;
    std::vector<int> numbers;
};

template <class Index>
class OtherDictionary {
public:
    static constexpr const char* kName = Index::kName;

    static void buildFile(const std::string& source, const std::string& target) {
        Source records(readFile(source));
        OtherDictionary(records.takeEntries()).write(target);
    }

    static std::string firstAnswer(const std::string& file, const std::string& text) {
        return OtherDictionary(file).search(text, true);
    }

    explicit OtherDictionary(std::vector<Entry> entries) {
        if (!std::is_sorted(entries.begin(), entries.end(), keyLess)) {
            std::sort(entries.begin(), entries.end(), keyLess);
        }
        Keys keys = storeFeatures(entries);
        std::vector<Entry>().swap(entries);
        m_index.build(keys);
        m_features = m_ownFeatures.data();
    }

    explicit OtherDictionary(const std::string& file) : m_file(std::in_place, file) {
        Header header;
        std::memcpy(&header, m_file->data(), sizeof header);
        m_features = m_file->data() + sizeof header;
        const std::size_t before = sizeof header + header.featureBytes;
        m_index.attach(m_file->data() + before, m_file->size() - before);
    }

    void exact(const std::string& key, std::string& text) const {
        const int feature = m_index.find(key);
        text.assign(feature < 0 ? std::string_view() : featureText(feature));
    }

    // Calls emit(text) for every key, with an empty text where there is no such key.
    template <class Emit>
    void lookUpEach(const std::vector<std::string>& keys, Emit emit) const {
        for (const std::string& key : keys) {
            const int feature = m_index.find(key);
            emit(feature < 0 ? std::string_view() : featureText(feature));
        }
    }

    // Calls emit(key, text) for the keys that begin with `prefix`, in order, until it returns
    // false.
    template <class Emit>
    void keysFrom(std::string_view prefix, Emit emit) const {
        m_index.keysFrom(prefix, [&](std::string_view key, int feature) {
            return emit(key, featureText(feature));
        });
    }

    void everyMatch(const std::string& text, Matches& matches) const {
        for (std::size_t at = 0; at < text.size(); at = nextCharacter(text, at)) {
            m_index.prefixes(std::string_view(text).substr(at),
                             [&](std::size_t length, int feature) {
                                 matches.push_back(match(at, length, feature));
                             });
        }
    }

    void longestMatch(const std::string& text, Matches& matches) const {
        for (std::size_t at = 0; at < text.size();) {
            const Longest longest = longestAt(text, at);
            if (longest.length != 0) matches.push_back(match(at, longest.length, longest.feature));
            at = longest.length != 0 ? at + longest.length : nextCharacter(text, at);
        }
    }

    std::string search(const std::string& text, bool withFeatures) const {
        std::string result;
        for (std::size_t at = 0; at < text.size(); at = nextCharacter(text, at)) {
            const Longest longest = longestAt(text, at);
            if (longest.length == 0) continue;
            result.append(text, at, longest.length);
            if (withFeatures) {
                result.append("/").append(std::to_string(at)).append(":");
                result.append(featureText(longest.feature));
            }
            result.push_back('\t');
        }
        return result;
    }

    std::string_view featureText(int feature) const {
        std::uint32_t length;
        std::memcpy(&length, m_features + feature, sizeof length);
        return {m_features + feature + sizeof length, length};
    }

private:
    static constexpr std::size_t kAlignment = 16;
    struct alignas(kAlignment) Header {
        std::uint64_t featureBytes = 0;
    };
    struct Longest {
        std::size_t length = 0;
        int feature = 0;
    };

    static Dictionary::SPOS match(std::size_t at, std::size_t length, int feature) {
        return {static_cast<int>(at), static_cast<int>(at + length - 1), feature};
    }

    Longest longestAt(const std::string& text, std::size_t at) const {
        Longest longest;
        m_index.prefixes(std::string_view(text).substr(at), [&](std::size_t length, int feature) {
            longest = {length, feature};
        });
        return longest;
    }

    // Stores each distinct text once and numbers the keys by the offsets of their texts.
    Keys storeFeatures(const std::vector<Entry>& entries) {
        Keys keys;
        keys.starts.reserve(entries.size());
        keys.lengths.reserve(entries.size());
        keys.numbers.reserve(entries.size());
        std::unordered_map<std::string_view, int> offsets;
        for (const Entry& entry : entries) {
            const int end = static_cast<int>(m_ownFeatures.size());
            const auto [stored, isNew] = offsets.try_emplace(entry.text, end);
            if (isNew) append(entry.text);
            keys.starts.push_back(entry.key.data());
            keys.lengths.push_back(entry.key.size());
            keys.numbers.push_back(stored->second);
        }
        return keys;
    }

    void append(std::string_view text) {
        const auto length = static_cast<std::uint32_t>(text.size());
        m_ownFeatures.append(reinterpret_cast<const char*>(&length), sizeof length).append(text);
    }

    void write(const std::string& path) const {
        std::FILE* file = std::fopen(path.c_str(), "wb");
        if (file == nullptr) fail("cannot write " + path);
        const std::size_t padding = -m_ownFeatures.size() % kAlignment;
        const Header header = {m_ownFeatures.size() + padding};
        std::fwrite(&header, sizeof header, 1, file);
        std::fwrite(m_ownFeatures.data(), 1, m_ownFeatures.size(), file);
        for (std::size_t i = 0; i < padding; ++i) std::fputc(0, file);
        m_index.write(file);
        if (std::fclose(file) != 0) fail("cannot write " + path);
    }

    std::optional<Mapping> m_file;
    std::string m_ownFeatures;         // empty when they are in m_file
    const char* m_features = nullptr;  // each text after its length
    Index m_index;
};

}  // namespace Bench

#endif
