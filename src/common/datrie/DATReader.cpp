#include "DATReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "EncodedText.h"
#include "ImageFormat.h"
#include "TextSearch.h"
#include "Utf8Decoder.h"
#include "Utf8Text.h"
#include "Walk.h"

namespace Dictionary {

namespace {

// Turns records of a reversed walk into text order with start before end.
void reverseVec(std::vector<SPOS>& records) {
    std::reverse(records.begin(), records.end());
    for (SPOS& record : records) std::swap(record.start, record.end);
}

}  // namespace

CDATReader::CDATReader(ICoderInterface* coder, void* image, bool reverse)
    : m_coder(coder), m_image(image), m_reverse(reverse), m_cellBytes(0) {
    if (image == nullptr) return;
    const Cell header = headerOf(image);
    m_cellBytes = cellBytesOf(header);
    const int featureBytes = featureBytesOf(header);
    m_features.reset(false, static_cast<const char*>(image) + m_cellBytes, featureBytes,
                     featureBytes);
}

CDATReader::~CDATReader() = default;

void CDATReader::exactMatch(const char* key, std::string& featureText) {
    featureText.clear();
    if (key == nullptr || m_coder == nullptr || m_image == nullptr) return;
    readOnce(*m_coder, key, -1, m_reverse, [&](const auto& text) {
        // Kept: the key must span the whole text from its first byte to its last, which a reversed
        // span of more than one byte never does.
        if (!text.spans(key)) return;
        findWholeKey(CellView(m_image, m_cellBytes), text, m_coder->getNumOfSingleWord(),
                     [&](std::int32_t feature) {
                         featureText += featureTextAt(m_features.data(), feature);
                     });
    });
}

void CDATReader::allMatch(const char* text, std::vector<SPOS>& matches, bool fromFirstOnly,
                          int length) {
    if (text == nullptr || m_coder == nullptr || m_image == nullptr) return;
    const CellView cells(m_image, m_cellBytes);
    const std::int32_t alphabet = m_coder->getNumOfSingleWord();
    const auto foundIn = [&](const auto& read) {
        return [&](std::size_t from, std::size_t end, std::int32_t feature) {
            matches.push_back(read.span(from, end, feature));
        };
    };
    if (fromFirstOnly) {
        readOnce(*m_coder, text, length, m_reverse, [&](const auto& read) {
            forEachKeyAtFirst(cells, read, alphabet, foundIn(read));
        });
    } else {
        const EncodedText encoded(*m_coder, text, length, m_reverse);
        TextSearch(cells, encoded).forEachKey(alphabet, foundIn(encoded));
    }
    if (m_reverse) reverseVec(matches);
}

void CDATReader::allMatch(const char* text,
                          std::vector<std::vector<std::pair<int, std::string> > >& groups,
                          bool fromFirstOnly, int length) {
    std::vector<SPOS> matches;
    allMatch(text, matches, fromFirstOnly, length);
    const std::size_t bytes = encodedSize(text, length);
    const std::size_t positions = fromFirstOnly ? std::min<std::size_t>(bytes, 1) : bytes;
    groups.reserve(groups.size() + positions);
    // Kept: records are taken in the order found, so one that starts before `position` blocks the
    // rest.
    auto match = matches.begin();
    for (int position = 0; static_cast<std::size_t>(position) < positions; ++position) {
        groups.emplace_back();
        for (; match != matches.end() && match->start == position; ++match) {
            groups.back().emplace_back(match->end + 1 - position,
                                       featureTextAt(m_features.data(), match->feature));
        }
    }
}

void CDATReader::maxMatch(const char* text, std::vector<SPOS>& matches) {
    if (text == nullptr || m_coder == nullptr || m_image == nullptr) return;
    const EncodedText encoded(*m_coder, text, -1, m_reverse);
    TextSearch(CellView(m_image, m_cellBytes), encoded)
        .forEachSegment([&](std::size_t from, std::size_t end, std::int32_t feature) {
            matches.push_back(encoded.span(from, end, feature));
        });
    if (m_reverse) reverseVec(matches);
}

void CDATReader::printVec(std::vector<int>& codes, int from, int to) {
    constexpr int kRoom = 9;
    const int count = static_cast<int>(codes.size());
    if (from > count || to > count) return;
    std::string text;
    for (int i = from; i < to; ++i) {
        char character[kRoom + 1] = {};
        m_coder->decode(codes[static_cast<std::size_t>(i)], character, kRoom);
        text += character;
    }
    // Kept: the text is dropped.
}

}  // namespace Dictionary
