// Helper, not installed: hands out the cells of an image in pieces that are best for files.

#ifndef DICTIONARY_CELL_PIECES_H
#define DICTIONARY_CELL_PIECES_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>

#include "ImageFormat.h"

namespace Dictionary {

// If a file is written in pieces of the size of a huge page, each at a multiple of that size, the
// page cache may keep it in huge pages. A mapping then takes one page fault per two mebibytes.
constexpr std::size_t kPieceBytes = std::size_t{2} << 20;

// Calls `sink(bytes, size)` for each piece.
template <class Sink>
class CellPieces {
public:
    // For `bytes` bytes of cells.
    CellPieces(std::size_t bytes, Sink& sink)
        : m_size(std::min(bytes, kPieceBytes)),
          m_bytes(new char[m_size + kCellBytes]),
          m_sink(sink) {}

    void add(const Cell& cell) {
        std::memcpy(&m_bytes[m_used], &cell, sizeof cell);
        m_used += sizeof cell;
        if (m_used >= m_size) handOut(m_size);
    }

    // Must be called after the last cell.
    void finish() {
        if (m_used > 0) handOut(m_used);
    }

private:
    void handOut(std::size_t size) {
        m_sink(static_cast<const char*>(m_bytes.get()), size);
        m_used -= size;
        // A cell may reach into the next piece.
        std::copy_n(&m_bytes[size], m_used, &m_bytes[0]);
    }

    const std::size_t m_size;
    const std::unique_ptr<char[]> m_bytes;
    std::size_t m_used = 0;
    Sink& m_sink;
};

}  // namespace Dictionary

#endif
