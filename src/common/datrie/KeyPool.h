// Helper, not installed: the codes of all keys, one key after the other in one array.

#ifndef DICTIONARY_KEY_POOL_H
#define DICTIONARY_KEY_POOL_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace Dictionary {

// A key's codes, as a view that lasts until the next key is added.
class KeyCodes {
public:
    KeyCodes(const std::uint16_t* narrow, const std::int32_t* wide, std::uint32_t length)
        : m_narrow(narrow), m_wide(wide), m_length(length) {}

    std::uint32_t length() const { return m_length; }
    std::int32_t operator[](std::uint32_t position) const {
        return m_wide == nullptr ? m_narrow[position] : m_wide[position];
    }

private:
    const std::uint16_t* m_narrow;
    const std::int32_t* m_wide;  // null while all codes of the pool are narrow
    std::uint32_t m_length;
};

// Keys are numbered from 1 in the order in which they were added. Codes take two bytes each until
// one is added that needs more. Keys of UTF-8 text never need more.
class KeyPool {
public:
    void reserve(std::size_t keys, std::size_t codes) {
        m_begins.reserve(keys + 2);
        if (!m_isWide) m_narrow.reserve(codes);
    }

    void add(const std::vector<int>& codes) {
        m_begins.push_back(m_begins.back() + codes.size());
        if (!m_isWide && !std::all_of(codes.begin(), codes.end(), isNarrow)) widen();
        if (m_isWide) {
            m_wide.insert(m_wide.end(), codes.begin(), codes.end());
        } else {
            m_narrow.insert(m_narrow.end(), codes.begin(), codes.end());
        }
    }

    std::uint32_t size() const { return static_cast<std::uint32_t>(m_begins.size() - 2); }

    KeyCodes operator[](std::uint32_t number) const {
        const std::size_t begin = m_begins[number];
        const auto length = static_cast<std::uint32_t>(m_begins[number + 1] - begin);
        if (m_isWide) return {nullptr, m_wide.data() + begin, length};
        return {m_narrow.data() + begin, nullptr, length};
    }

    // A key's codes begin at this position among all codes and end where the next key's codes
    // begin.
    std::size_t beginOf(std::uint32_t number) const { return m_begins[number]; }
    std::int32_t codeAt(std::size_t position) const {
        return m_isWide ? m_wide[position] : m_narrow[position];
    }

    // Prefetch memory that will be needed.
    void prefetchBegin(std::uint32_t number) const { __builtin_prefetch(&m_begins[number]); }
    void prefetchCode(std::size_t position) const {
        if (m_isWide) {
            __builtin_prefetch(m_wide.data() + position);
        } else {
            __builtin_prefetch(m_narrow.data() + position);
        }
    }

private:
    static bool isNarrow(int code) {
        return code >= 0 && code <= std::numeric_limits<std::uint16_t>::max();
    }

    void widen() {
        m_wide.assign(m_narrow.begin(), m_narrow.end());
        std::vector<std::uint16_t>().swap(m_narrow);
        m_isWide = true;
    }

    bool m_isWide = false;
    std::vector<std::uint16_t> m_narrow;  // one of the two is empty
    std::vector<std::int32_t> m_wide;
    std::vector<std::size_t> m_begins = {0, 0};  // by number, and the end of the last key
};

}  // namespace Dictionary

#endif
