#include "PieceFind.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

#include "CheapestPath.h"
#include "DataText.h"
#include "LabelText.h"
#include "Segmenter.h"
#include "TextKeys.h"
#include "TextUnits.h"

namespace Dictionary {

namespace {

constexpr std::uint32_t kNoData = std::numeric_limits<std::uint32_t>::max();

bool isAsciiLetterOrDigit(char byte) {
    const char letter = static_cast<char>(byte | 0x20);
    return (byte >= '0' && byte <= '9') || (letter >= 'a' && letter <= 'z');
}

// Hands out the keys of a segmentation as matches, and also the pieces between them if the options
// say so.
class Pieces {
public:
    Pieces(const TextFind& find, const MatchTaker& taker)
        : m_find(find), m_taker(taker), m_text(find.text), m_units(m_text, find.options.unit) {}

    // Takes a key in the bytes from `start` up to, not including, `end`. Returns false if that was
    // enough.
    bool takeKey(std::size_t start, std::size_t end, const ImageView& image, std::uint32_t number,
                 std::int32_t feature) {
        if (!takeUnknown(start)) return false;
        m_end = end;
        return take(start, end, dataText(image.featureText(feature)),
                    static_cast<std::uint32_t>(feature), number);
    }

    // Takes what no key covers, from the last piece up to `end`. Returns false if that was enough.
    bool takeUnknown(std::size_t end) {
        if (!m_find.options.unknownPieces) return true;
        while (m_end < end) {
            const std::size_t start = m_end;
            passUnknown(end);
            if (!take(start, m_end, kNoText, kNoData, 0)) return false;
        }
        return true;
    }

private:
    void passUnknown(std::size_t end) {
        const bool joins = m_find.options.joinedRuns && isAsciiLetterOrDigit(m_find.text[m_end]);
        passCharacter(m_text, m_end);
        while (joins && m_end < end && isAsciiLetterOrDigit(m_find.text[m_end])) ++m_end;
    }

    bool take(std::size_t start, std::size_t end, DictionaryText data, std::uint32_t dataNumber,
              std::uint32_t image) {
        const Stretch stretch = m_units.measure(start, end);
        return m_taker({stretch.start, stretch.length, data, dataNumber, image});
    }

    const TextFind& m_find;
    const MatchTaker& m_taker;
    const LabelText m_text;
    TextUnits<LabelText> m_units;
    std::size_t m_end = 0;  // of the last piece
};

}  // namespace

bool visitSegments(const TextFind& find, const MatchTaker& taker) {
    Pieces pieces(find, taker);
    const auto take = [&](std::size_t start, const KeyAt& key) {
        const ImageView& image = find.handle.images[key.image]->view();
        return pieces.takeKey(start, key.end, image, key.image, key.feature);
    };
    return withKeys(find, [&](auto& keys, const auto&) { return scanSegments(keys, take); }) &&
           pieces.takeUnknown(find.text.size());
}

bool visitCheapest(const TextFind& find, const MatchTaker& taker) {
    Pieces pieces(find, taker);
    const WeightedImages& weighted = find.options.segmenter->weighted;
    std::optional<CheapestPath> own;
    CheapestPath& path =
        find.path != nullptr ? *find.path : own.emplace(weighted, find.options.wholeWords);
    path.cut(find.text);
    return path.forEachKey([&](std::size_t start, std::size_t end, std::uint32_t number,
                               std::int32_t feature) {
        const ImageView& image = weighted.images[number].image;
        return pieces.takeKey(start, end, image, number, feature);
    }) && pieces.takeUnknown(find.text.size());
}

}  // namespace Dictionary
