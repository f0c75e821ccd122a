// Helper, not installed: the labels of the key that ends in a cell.

#ifndef DICTIONARY_KEY_LABELS_H
#define DICTIONARY_KEY_LABELS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "EncodedText.h"
#include "ImageFormat.h"
#include "UnicodeConversion.h"

namespace Dictionary {

// A text for walks: the labels on the way from the root to a cell. Can be reused.
class KeyLabels {
public:
    // Climbs from `cell`, which must be a node of a sound image.
    void climb(const CellView& cells, std::int32_t cell) {
        m_labels.assign(1, EncodedText::kEnd);
        for (std::int32_t parent; (parent = cells[cell].check) != kRootCheck; cell = parent) {
            const std::int64_t first = childIndex(cells[parent], 0);
            m_labels.push_back(static_cast<std::int32_t>(cell - first));
        }
        m_labels.push_back(cell);
        std::reverse(m_labels.begin(), m_labels.end());
    }

    // The key in UTF-8.
    std::string text() const {
        constexpr std::size_t kMostBytes = 3;
        const std::vector<std::uint16_t> units(m_labels.begin(), m_labels.end() - 1);
        std::string text(kMostBytes * units.size(), '\0');
        const std::uint16_t* source = units.data();
        auto* const begin = reinterpret_cast<std::uint8_t*>(text.data());
        std::uint8_t* end = begin;
        ConvertUTF16toUTF8(&source, source + units.size(), &end, begin + text.size(),
                           lenientConversion);
        text.resize(static_cast<std::size_t>(end - begin));
        return text;
    }

    std::size_t size() const { return m_labels.size() - 1; }
    std::int32_t next(std::size_t& place) const { return m_labels[place++]; }

private:
    std::vector<std::int32_t> m_labels;  // the last one is kEnd
};

}  // namespace Dictionary

#endif
