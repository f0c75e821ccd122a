#include "Diagnostics.h"

#include <cstddef>

namespace Dictionary {

namespace {

constexpr std::size_t kBlockBytes = std::size_t{1} << 16;

}  // namespace

MessageBlock& MessageBlock::operator<<(std::string_view text) {
    m_text.append(text);
    if (m_text.size() >= kBlockBytes) flush();
    return *this;
}

void MessageBlock::flush() {
    std::fwrite(m_text.data(), 1, m_text.size(), m_stream);
    m_text.clear();
}

StreamMessage& StreamMessage::operator<<(const char* part) {
    if (part == nullptr) m_failed = true;
    if (!m_failed) m_text += part;
    return *this;
}

void StreamMessage::print(std::FILE* stream) {
    if (!m_failed) m_text += '\n';
    std::fprintf(stream, "%s\n", m_text.c_str());
}

}  // namespace Dictionary
