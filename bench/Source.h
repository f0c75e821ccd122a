// A text source in memory, read as cheaply as a host can: one buffer, fields cut in place, keys
// sorted, the texts of repeated keys joined.

#ifndef BENCH_SOURCE_H
#define BENCH_SOURCE_H

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Bench {

[[noreturn]] inline void fail(const std::string& what) {
    std::fprintf(stderr, "bench: %s\n", what.c_str());
    std::exit(EXIT_FAILURE);
}

inline std::string readFile(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) fail("cannot open " + path);
    std::fseek(file, 0, SEEK_END);
    std::string bytes(static_cast<std::size_t>(std::ftell(file)), '\0');
    std::rewind(file);
    const std::size_t read = std::fread(bytes.data(), 1, bytes.size(), file);
    if (read != bytes.size()) fail("cannot read " + path);
    std::fclose(file);
    return bytes;
}

// Where the character after the one at `at` begins.
inline std::size_t nextCharacter(std::string_view text, std::size_t at) {
    do ++at;
    while (at < text.size() && (text[at] & 0xC0) == 0x80);
    return at;
}

struct Entry {
    std::string_view key;  // a NUL follows it
    std::string_view text;
};

inline bool keyLess(const Entry& left, const Entry& right) {
    return left.key < right.key;
}

// Owns what its entries point to.
class Source {
public:
    // Records end with a newline and have a key and at least one field, separated by tabs.
    explicit Source(std::string bytes) : m_bytes(std::move(bytes)) {
        split();
        // Keys that are equal keep their order in the source.
        std::sort(m_entries.begin(), m_entries.end(), [](const Entry& left, const Entry& right) {
            const int order = left.key.compare(right.key);
            return order != 0 ? order < 0 : left.key.data() < right.key.data();
        });
        joinRepeated();
    }

    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    // By key, ascending, each key once.
    const std::vector<Entry>& entries() const { return m_entries; }
    std::vector<Entry> takeEntries() { return std::move(m_entries); }

private:
    void split() {
        char* const bytes = m_bytes.data();
        for (std::size_t start = 0; start < m_bytes.size();) {
            const std::size_t tab = m_bytes.find('\t', start);
            const std::size_t end = m_bytes.find('\n', tab);
            if (end == std::string::npos) fail("a record without a field or an end");
            bytes[tab] = '\0';
            bytes[end] = '\t';  // every field of a text ends with a tab
            m_entries.push_back({{bytes + start, tab - start}, {bytes + tab + 1, end - tab}});
            start = end + 1;
        }
    }

    void joinRepeated() {
        std::size_t kept = 0;
        for (std::size_t first = 0, end; first < m_entries.size(); first = end) {
            end = first + 1;
            while (end < m_entries.size() && m_entries[end].key == m_entries[first].key) ++end;
            m_entries[kept++] = end - first == 1 ? m_entries[first] : joined(first, end);
        }
        m_entries.resize(kept);
    }

    Entry joined(std::size_t first, std::size_t end) {
        std::string text(m_entries[first].text);
        for (std::size_t i = first + 1; i < end; ++i) (text += ';') += m_entries[i].text;
        return {m_entries[first].key, m_joined.emplace_back(std::move(text))};
    }

    std::string m_bytes;
    std::deque<std::string> m_joined;
    std::vector<Entry> m_entries;
};

}  // namespace Bench

#endif
