// The UTF-8 of a JavaScript string.

#ifndef DICTIONARY_NODE_UTF8_TEXT_H
#define DICTIONARY_NODE_UTF8_TEXT_H

#include <cstddef>
#include <memory>
#include <string>

namespace Dictionary::Node {

// An unpaired surrogate becomes a byte that begins no legal sequence: it stays one unit, and no key
// holds it.
class Utf8Text {
public:
    explicit Utf8Text(const std::u16string& units);

    const char* data() const { return m_bytes.get(); }
    std::size_t size() const { return m_size; }

private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size;
};

}  // namespace Dictionary::Node

#endif
