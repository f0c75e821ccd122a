#include "Trie.h"

#include "Utf8Decoder.h"
#include "Utf8Encoder.h"

namespace dictool {

namespace {

constexpr std::int32_t kNoCell = 0;
constexpr std::int32_t kRoot = 0;

bool isPair(std::int32_t high, std::int32_t low) {
    return Dictionary::isHighSurrogate(high) && Dictionary::isLowSurrogate(low);
}

}  // namespace

Trie::Trie(const Image& image)
    : m_image(image),
      m_firstChild(indexOf(image.cellCount()), kNoCell),
      m_nextSibling(indexOf(image.cellCount()), kNoCell) {
    // Characters above U+FFFF, which begin with a surrogate, come after all others.
    for (const bool surrogates : {true, false}) {
        for (std::int32_t cell = image.cellCount() - 1; cell > 0; --cell) {
            if (image.isUsed(cell) && Dictionary::isSurrogate(label(cell)) == surrogates)
                addFront(cell);
        }
    }
}

void Trie::addFront(std::int32_t cell) {
    const std::int32_t check = m_image.cell(cell).check;
    const std::int32_t parent = check == Dictionary::kRootCheck ? kRoot : check;
    m_nextSibling[indexOf(cell)] = firstChild(parent);
    m_firstChild[indexOf(parent)] = cell;
}

std::int32_t Trie::label(std::int32_t cell) const {
    const std::int32_t parent = m_image.cell(cell).check;
    if (parent == Dictionary::kRootCheck) return cell;
    return static_cast<std::int32_t>(cell - Dictionary::childIndex(m_image.cell(parent), 0));
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
    push(cell);
    return true;
}

// A surrogate that is not in a pair is encoded in three bytes of its own.
void Cursor::push(std::int32_t cell) {
    const std::int32_t label = m_trie.label(cell);
    const std::size_t keyBytes = m_key.size();
    if (!m_path.empty() && isPair(m_path.back().label, label)) {
        m_key.resize(m_path.back().keyBytes);
        Dictionary::appendUtf8(Dictionary::codeOfPair(m_path.back().label, label), m_key);
    } else {
        Dictionary::appendUtf8(label, m_key);
    }
    m_path.push_back({cell, label, keyBytes});
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
