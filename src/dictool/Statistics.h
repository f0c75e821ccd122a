// What an image holds, in numbers.

#ifndef DICTOOL_STATISTICS_H
#define DICTOOL_STATISTICS_H

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "Image.h"

namespace dictool {

// How often values occur. A small value has its own bin; others share one per power of two.
class Histogram {
public:
    struct Bin {
        std::uint64_t first;
        std::uint64_t last;
        std::uint64_t count;
    };

    void add(std::uint64_t value);
    // The bins from the first one that is not empty to the last.
    std::vector<Bin> bins() const;

private:
    std::vector<std::uint64_t> m_counts;
};

std::string labelOf(const Histogram::Bin& bin);

struct Statistics {
    std::uint64_t imageBytes = 0;
    std::uint64_t cells = 0;  // the header included
    std::uint64_t usedCells = 0;
    std::uint64_t featureBytes = 0;
    std::uint64_t dataTexts = 0;  // distinct data texts of keys
    std::uint64_t keys = 0;
    std::uint64_t keyBytes = 0;
    bool folded = false;
    Histogram keysByLength;  // in characters
    Histogram nodesByDepth;  // a first character has depth 1
    Histogram nodesByChildren;

    // Both are 0 when there is nothing to divide by.
    double usedShare() const;
    double bytesPerKey() const;
};

Statistics statisticsOf(const Image& image);
nlohmann::ordered_json jsonOf(const Statistics& statistics);

}  // namespace dictool

#endif
