// std::unordered_map: finds whole keys only. For texts, a second map also holds every beginning of
// a key, so that a walk knows where to stop.

#ifndef BENCH_HASH_INDEX_H
#define BENCH_HASH_INDEX_H

#include <mutex>

#include "OtherDictionary.h"

namespace Bench {

class HashIndex {
public:
    static constexpr const char* kName = "unordered_map";

    void build(Keys& keys) {
        m_numbers.reserve(keys.starts.size());
        std::size_t bytes = 0;
        for (const std::size_t length : keys.lengths) bytes += length;
        m_own.reserve(bytes);
        for (std::size_t i = 0; i < keys.starts.size(); ++i) {
            const std::size_t start = m_own.size();
            m_own.append(keys.starts[i], keys.lengths[i]);
            add({m_own.data() + start, keys.lengths[i]}, keys.numbers[i]);
        }
    }

    void write(std::FILE* file) const {
        for (const auto& [key, number] : m_numbers) {
            const Record record = {static_cast<std::uint32_t>(key.size()), number};
            std::fwrite(&record, sizeof record, 1, file);
            std::fwrite(key.data(), 1, key.size(), file);
        }
    }

    void attach(char* bytes, std::size_t size) {
        for (const char* const end = bytes + size; bytes < end;) {
            Record record;
            std::memcpy(&record, bytes, sizeof record);
            add({bytes + sizeof record, record.keyLength}, record.number);
            bytes += sizeof record + record.keyLength;
        }
    }

    int find(std::string_view key) const {
        const auto found = m_numbers.find(key);
        return found == m_numbers.end() ? kNoKey : found->second;
    }

    template <class Emit>
    void prefixes(std::string_view text, Emit emit) const {
        std::call_once(m_beginningsMade, [this] { makeBeginnings(); });
        for (std::size_t length = 0; length < text.size();) {
            length = nextCharacter(text, length);
            const auto found = m_beginnings.find(text.substr(0, length));
            if (found == m_beginnings.end()) return;
            if (found->second != kNoKey) emit(length, found->second);
        }
    }

private:
    struct Record {
        std::uint32_t keyLength;
        std::int32_t number;
    };

    using Map = std::unordered_map<std::string_view, int>;

    static constexpr int kNoKey = -1;

    void add(std::string_view key, int number) { m_numbers.emplace(key, number); }

    void makeBeginnings() const {
        for (const auto& [key, number] : m_numbers) {
            m_beginnings[key] = number;
            for (std::size_t end = nextCharacter(key, 0); end < key.size();) {
                m_beginnings.try_emplace(key.substr(0, end), kNoKey);
                end = nextCharacter(key, end);
            }
        }
    }

    std::string m_own;  // the keys' bytes, unless they are in a file
    Map m_numbers;
    mutable Map m_beginnings;  // made when the first text is searched
    mutable std::once_flag m_beginningsMade;
};

}  // namespace Bench

#endif
