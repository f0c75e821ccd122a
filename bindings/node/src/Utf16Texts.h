// Many texts in UTF-16.

#ifndef DICTIONARY_NODE_UTF16_TEXTS_H
#define DICTIONARY_NODE_UTF16_TEXTS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Dictionary::Node {

// In one piece of memory, as an allocation for each takes longer than a search of a line.
class Utf16Texts {
public:
    std::size_t size() const { return m_ends.size(); }
    std::size_t units() const { return m_units.size(); }
    std::u16string_view operator[](std::size_t i) const {
        const std::size_t start = i == 0 ? 0 : m_ends[i - 1];
        return std::u16string_view(m_units).substr(start, m_ends[i] - start);
    }

    // Adds a text of `length` units, which `fill(place)` writes, and a NUL after them.
    template <class Fill>
    void add(std::size_t length, const Fill& fill) {
        const std::size_t start = m_units.size();
        m_units.resize(start + length + 1);
        fill(&m_units[start]);
        m_units.pop_back();
        m_ends.push_back(m_units.size());
    }

private:
    std::u16string m_units;
    std::vector<std::size_t> m_ends;  // by text
};

}  // namespace Dictionary::Node

#endif
