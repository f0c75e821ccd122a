// JavaScript strings to UTF-8, and back.

#ifndef DICTIONARY_NODE_UTF8_STRING_H
#define DICTIONARY_NODE_UTF8_STRING_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Dictionary.h"
#include "Utf16Texts.h"

namespace Dictionary::Node {

// A string in UTF-8. An unpaired surrogate becomes a byte that begins no legal sequence: it still
// counts as one unit, and no key holds it.
class Utf8String {
public:
    explicit Utf8String(std::u16string_view units);

    const char* data() const { return m_bytes.get(); }
    std::size_t size() const { return m_size; }
    operator DictionaryText() const { return {data(), size()}; }
    // Whether there was no unpaired surrogate.
    bool isWellFormed() const { return m_isWellFormed; }

private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size = 0;
    bool m_isWellFormed = true;
};

// The units of UTF-8, with U+FFFD for each byte that begins no legal sequence.
std::u16string unitsOf(std::string_view utf8);

// Several strings, as the library takes them.
class Utf8Strings {
public:
    explicit Utf8Strings(const Utf16Texts& texts);

    const DictionaryText* data() const { return m_views.data(); }
    std::size_t size() const { return m_views.size(); }

private:
    std::unique_ptr<char[]> m_bytes;
    std::vector<DictionaryText> m_views;
};

}  // namespace Dictionary::Node

#endif
