// Helper, not installed: the codes of all keys, one behind the other in one array.

#ifndef DICTIONARY_KEY_POOL_H
#define DICTIONARY_KEY_POOL_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Dictionary {

// A key's codes, as a view that lasts until the next key is added.
struct KeyCodes {
    const std::int32_t* codes;
    std::uint32_t length;

    const std::int32_t* begin() const { return codes; }
    const std::int32_t* end() const { return codes + length; }
    std::int32_t operator[](std::uint32_t position) const { return codes[position]; }
};

// Keys are numbered from 1 in the order in which they were added.
class KeyPool {
public:
    void reserve(std::size_t keys, std::size_t codes) {
        m_ends.reserve(keys + 1);
        m_codes.reserve(codes);
    }

    void add(const std::vector<int>& codes) {
        m_ends.push_back(m_codes.size() + codes.size());
        m_codes.insert(m_codes.end(), codes.begin(), codes.end());
    }

    std::uint32_t size() const { return static_cast<std::uint32_t>(m_ends.size() - 1); }

    KeyCodes operator[](std::uint32_t number) const {
        const std::size_t begin = m_ends[number - 1];
        return {m_codes.data() + begin, static_cast<std::uint32_t>(m_ends[number] - begin)};
    }

private:
    std::vector<std::int32_t> m_codes;
    std::vector<std::size_t> m_ends = {0};
};

}  // namespace Dictionary

#endif
