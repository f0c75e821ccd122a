#include "Trie.h"

namespace dictool {

namespace {

constexpr std::int32_t kNoCell = 0;
constexpr std::int32_t kRoot = 0;

void appendBits(std::string& text, std::int32_t mark, std::int32_t bits) {
    text += static_cast<char>(mark | bits);
}

// Labels lie below U+10000. A surrogate comes out in its own three bytes.
void appendUtf8(std::string& text, std::int32_t code) {
    constexpr std::int32_t kTail = 0x80, kTailBits = 0x3F;
    if (code < 0x80) return appendBits(text, 0, code);
    if (code < 0x800) {
        appendBits(text, 0xC0, code >> 6);
    } else {
        appendBits(text, 0xE0, code >> 12);
        appendBits(text, kTail, code >> 6 & kTailBits);
    }
    appendBits(text, kTail, code & kTailBits);
}

}  // namespace

Trie::Trie(const Image& image)
    : m_image(image),
      m_firstChild(indexOf(image.cellCount()), kNoCell),
      m_nextSibling(indexOf(image.cellCount()), kNoCell) {
    for (std::int32_t cell = image.cellCount() - 1; cell > 0; --cell) {
        if (!image.isUsed(cell)) continue;
        const std::int32_t check = image.cell(cell).check;
        const std::int32_t parent = check == Dictionary::kRootCheck ? kRoot : check;
        m_nextSibling[indexOf(cell)] = firstChild(parent);
        m_firstChild[indexOf(parent)] = cell;
    }
}

std::int32_t Trie::label(std::int32_t cell) const {
    const std::int32_t parent = m_image.cell(cell).check;
    if (parent == Dictionary::kRootCheck) return cell;
    return cell - static_cast<std::int32_t>(Dictionary::childIndex(m_image.cell(parent), 0));
}

bool Cursor::next() {
    std::int32_t cell = m_begun ? kNoCell : m_trie.firstChild(kRoot);
    m_begun = true;
    if (!m_path.empty()) cell = m_trie.firstChild(m_path.back().cell);
    while (cell == kNoCell && !m_path.empty()) {
        cell = m_trie.nextSibling(m_path.back().cell);
        m_key.resize(m_path.back().keyBytes);
        m_path.pop_back();
    }
    if (cell == kNoCell) return false;
    m_path.push_back({cell, m_key.size()});
    appendUtf8(m_key, m_trie.label(cell));
    return true;
}

bool Cursor::nextKey() {
    while (next()) {
        if (endsKey()) return true;
    }
    return false;
}

std::uint32_t Cursor::childCount() const {
    std::uint32_t count = 0;
    for (std::int32_t child = m_trie.firstChild(m_path.back().cell); child != kNoCell;
         child = m_trie.nextSibling(child)) {
        ++count;
    }
    return count;
}

std::string_view sourceTextOf(std::string_view key) {
    return key == "\n" ? std::string_view("\\n") : key;
}

}  // namespace dictool
