// Segmentation by weight, slow and obvious.

#ifndef TESTS_SEGMENT_MODEL_H
#define TESTS_SEGMENT_MODEL_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "LabelImage.h"
#include "SlowText.h"

using Characters = std::vector<std::string>;

inline const Characters kAlphabet = {"a", "b", "1", "é", "中", "国", "😀", "𠀀"};

inline Characters charactersOf(const std::string& text) {
    Characters characters;
    for (std::size_t at = 0; at < text.size(); at += characters.back().size()) {
        uint32_t code;
        long length;
        const bool legal = readSlowly(text.substr(at, 4), code, length) == conversionOK;
        characters.push_back(text.substr(at, legal ? static_cast<std::size_t>(length) : 1));
    }
    return characters;
}

inline std::string joined(const Characters& text, std::size_t from, std::size_t to) {
    std::string bytes;
    for (std::size_t i = from; i < to; ++i) bytes += text[i];
    return bytes;
}

constexpr double kUnknownCost = 7;

// The pieces of the cheapest way to cut a text, with keys in brackets. No key has more than
// `longest` characters. No piece that is a key begins or ends at a place that is set in `closed`.
// Costs are whole numbers, so that sums are exact.
inline std::string cheapestPieces(const Words& costs, const Characters& text, std::size_t longest,
                                  std::vector<bool> closed = {}) {
    closed.resize(text.size() + 1);
    std::vector<double> best(text.size() + 1);
    std::vector<std::size_t> ends(text.size());
    std::vector<bool> isKey(text.size());
    for (std::size_t from = text.size(); from-- > 0;) {
        best[from] = kUnknownCost + best[from + 1];
        ends[from] = from + 1;
        for (std::size_t to = from + 1; to <= std::min(from + longest, text.size()); ++to) {
            const auto found = costs.find(joined(text, from, to));
            if (found == costs.end() || closed[from] || closed[to]) continue;
            const double cost = std::stod(found->second) + best[to];
            if (isKey[from] && cost > best[from]) continue;
            isKey[from] = true;
            best[from] = cost;
            ends[from] = to;
        }
    }
    std::string pieces;
    for (std::size_t from = 0; from < text.size(); from = ends[from]) {
        const std::string piece = joined(text, from, ends[from]);
        pieces += isKey[from] ? '[' + piece + ']' : piece + '/';
    }
    return pieces;
}

#endif
