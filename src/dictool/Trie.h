// A verified image, read as a trie.

#ifndef DICTOOL_TRIE_H
#define DICTOOL_TRIE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Image.h"

namespace dictool {

// Which cell is whose child. Lookups need not know this, but listings do.
class Trie {
public:
    explicit Trie(const Image& image);

    const Image& image() const { return m_image; }
    // Both return 0 if there is none. Children come in the order of their characters. The root's
    // children are those of cell 0.
    std::int32_t firstChild(std::int32_t cell) const { return m_firstChild[indexOf(cell)]; }
    std::int32_t nextSibling(std::int32_t cell) const { return m_nextSibling[indexOf(cell)]; }
    std::int32_t label(std::int32_t cell) const;

private:
    void addFront(std::int32_t cell);  // among its parent's children
    static std::size_t indexOf(std::int32_t cell) { return static_cast<std::size_t>(cell); }

    const Image& m_image;
    std::vector<std::int32_t> m_firstChild;
    std::vector<std::int32_t> m_nextSibling;
};

// Goes through the nodes of a trie, each node before its children. So keys come in the order of
// their code points, which is that of their bytes.
class Cursor {
public:
    explicit Cursor(const Trie& trie) : m_trie(trie) {}

    // Move to the next node, or to the next one where a key ends; false at the end.
    bool next();
    bool nextKey();

    // The characters that lead to the node. One above U+FFFF is two nodes, one per surrogate.
    std::string_view key() const { return m_key; }
    std::size_t depth() const { return m_path.size(); }
    std::string_view data() const { return m_trie.image().data(cell().feature); }
    Dictionary::Cell cell() const { return m_trie.image().cell(m_path.back().cell); }
    bool endsKey() const { return Dictionary::endsKey(cell()); }
    bool isLeaf() const { return m_trie.firstChild(m_path.back().cell) == 0; }
    std::uint32_t childCount() const;

private:
    struct Step {
        std::int32_t cell;
        std::int32_t label;
        std::size_t keyBytes;  // of the parent's characters
    };

    void push(std::int32_t cell);

    const Trie& m_trie;
    std::vector<Step> m_path;
    std::string m_key;
    bool m_begun = false;
};

// A key as a source has it. There, the key newline is written as a backslash and an n.
std::string_view sourceTextOf(std::string_view key);

}  // namespace dictool

#endif
