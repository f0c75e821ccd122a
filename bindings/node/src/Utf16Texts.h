// Many texts in UTF-16.

#ifndef DICTIONARY_NODE_UTF16_TEXTS_H
#define DICTIONARY_NODE_UTF16_TEXTS_H

#include <cstddef>
#include <string_view>
#include <vector>

namespace Dictionary::Node {

// In one piece of memory, because an allocation per text takes longer than a search of a line.
class Utf16Texts {
public:
    std::size_t size() const { return m_ends.size(); }
    std::size_t units() const { return m_size; }
    std::u16string_view operator[](std::size_t i) const {
        const std::size_t start = i == 0 ? 0 : m_ends[i - 1];
        return {m_units.data() + start, m_ends[i] - start};
    }

    // Adds a text. `read(place, room)` writes as many of its units as there is room for, with a NUL
    // after them, and returns how many units it wrote.
    template <class Read>
    void add(const Read& read) {
        std::size_t length;
        while ((length = read(m_units.data() + m_size, room())) + 1 >= room()) {
            m_units.resize(2 * m_units.size());
        }
        m_size += length;
        m_ends.push_back(m_size);
    }

private:
    static constexpr std::size_t kLeastUnits = 4096;

    std::size_t room() const { return m_units.size() - m_size; }

    std::vector<char16_t> m_units = std::vector<char16_t>(kLeastUnits);  // and room for more
    std::size_t m_size = 0;                                              // without the room
    std::vector<std::size_t> m_ends;                                     // by text
};

}  // namespace Dictionary::Node

#endif
