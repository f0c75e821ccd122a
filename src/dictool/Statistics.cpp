#include "Statistics.h"

#include <algorithm>

#include "Printable.h"
#include "Trie.h"

namespace dictool {

namespace {

constexpr std::uint64_t kLastSingle = 16;  // a power of two

// Values up to kLastSingle have bins of their own; 17 to 32 come next, then 33 to 64.
std::size_t binOf(std::uint64_t value) {
    std::size_t bin = std::min(value, kLastSingle);
    for (std::uint64_t last = kLastSingle; last < value; last *= 2) ++bin;
    return bin;
}

std::uint64_t lastOf(std::size_t bin) {
    return bin <= kLastSingle ? bin : kLastSingle << (bin - kLastSingle);
}

double ratio(std::uint64_t part, std::uint64_t whole) {
    return whole == 0 ? 0 : static_cast<double>(part) / static_cast<double>(whole);
}

nlohmann::ordered_json jsonOf(const Histogram& histogram) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Histogram::Bin& bin : histogram.bins()) {
        list.push_back({{"first", bin.first}, {"last", bin.last}, {"count", bin.count}});
    }
    return list;
}

}  // namespace

void Histogram::add(std::uint64_t value) {
    const std::size_t bin = binOf(value);
    if (bin >= m_counts.size()) m_counts.resize(bin + 1);
    ++m_counts[bin];
}

std::vector<Histogram::Bin> Histogram::bins() const {
    std::vector<Bin> bins;
    for (std::size_t bin = 0; bin < m_counts.size(); ++bin) {
        if (bins.empty() && m_counts[bin] == 0) continue;
        const std::uint64_t first = bin == 0 ? 0 : lastOf(bin - 1) + 1;
        bins.push_back({first, lastOf(bin), m_counts[bin]});
    }
    return bins;
}

std::string labelOf(const Histogram::Bin& bin) {
    const std::string first = std::to_string(bin.first);
    return bin.first == bin.last ? first : first + "-" + std::to_string(bin.last);
}

double Statistics::usedShare() const {
    return ratio(usedCells, cells);
}

double Statistics::bytesPerKey() const {
    return ratio(imageBytes, keys);
}

Statistics statisticsOf(const Image& image) {
    Statistics statistics;
    statistics.imageBytes = image.bytes().size();
    statistics.cells = static_cast<std::uint64_t>(image.cellCount());
    statistics.featureBytes = image.featureBytes();
    statistics.folded = image.folded();
    const Trie trie(image);
    std::vector<std::int32_t> features;
    for (Cursor cursor(trie); cursor.next();) {
        ++statistics.usedCells;
        statistics.nodesByDepth.add(cursor.depth());
        statistics.nodesByChildren.add(cursor.childCount());
        if (!cursor.endsKey()) continue;
        ++statistics.keys;
        statistics.keyBytes += cursor.key().size();
        statistics.keysByLength.add(countCharacters(cursor.key()));
        features.push_back(cursor.cell().feature);
    }
    std::sort(features.begin(), features.end());
    const auto end = std::unique(features.begin(), features.end());
    statistics.dataTexts = static_cast<std::uint64_t>(end - features.begin());
    return statistics;
}

nlohmann::ordered_json jsonOf(const Statistics& statistics) {
    return {{"imageBytes", statistics.imageBytes},
            {"cells", statistics.cells},
            {"usedCells", statistics.usedCells},
            {"freeCells", statistics.cells - statistics.usedCells},
            {"usedShare", statistics.usedShare()},
            {"dataBytes", statistics.featureBytes},
            {"dataTexts", statistics.dataTexts},
            {"keys", statistics.keys},
            {"folded", statistics.folded},
            {"keyBytes", statistics.keyBytes},
            {"bytesPerKey", statistics.bytesPerKey()},
            {"keysByLength", jsonOf(statistics.keysByLength)},
            {"nodesByDepth", jsonOf(statistics.nodesByDepth)},
            {"nodesByChildren", jsonOf(statistics.nodesByChildren)}};
}

}  // namespace dictool
