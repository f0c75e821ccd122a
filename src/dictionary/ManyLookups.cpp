#include "ManyLookups.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "DataText.h"
#include "Utf8Text.h"

namespace Dictionary {

namespace {

// A walk waits for one cell after the other. So several walks take turns: each prefetches the cell
// that it needs next and lets the others go on meanwhile. When a walk ends, the next key takes its
// place at once. Keys that are found wait for their data texts in the same way.
class ManyLookups {
public:
    ManyLookups(const ImageView& image, const DictionaryText* keys, std::size_t count,
                DictionaryText* data)
        : m_image(image), m_cells(image.cells()), m_keys(keys), m_count(count), m_data(data) {}

    std::size_t run();

private:
    static constexpr std::size_t kWalks = 32;
    static constexpr std::size_t kKeysAhead = 16;

    struct Walk {
        Utf8LabelText text{nullptr, 0};  // of the key
        std::size_t place;               // of its next label
        std::uint32_t cell;              // reached
        std::uint32_t child;             // prefetched
        std::size_t key;                 // number of the key
    };
    struct Found {
        std::size_t key;
        std::int32_t feature;
    };

    bool isWanted(std::size_t key) const;
    bool start(Walk& walk);
    bool advance(Walk& walk);
    void askForChild(Walk& walk, std::int32_t base);
    void found(const Walk& walk);
    void deliver(const Found& found);

    const ImageView& m_image;
    const CellView& m_cells;
    const DictionaryText* m_keys;
    std::size_t m_count;
    DictionaryText* m_data;
    std::size_t m_started = 0;  // keys
    std::size_t m_found = 0;    // keys
    Walk m_walks[kWalks] = {};
    Found m_waiting[kWalks];  // for their data, in turn
};

std::size_t ManyLookups::run() {
    std::size_t walks = 0;
    while (walks < kWalks && start(m_walks[walks])) ++walks;
    while (walks > 0) {
        for (std::size_t i = 0; i < walks;) {
            if (advance(m_walks[i]) || start(m_walks[i])) {
                ++i;
            } else {
                m_walks[i] = m_walks[--walks];
            }
        }
    }
    for (std::size_t i = m_found - std::min(m_found, kWalks); i < m_found; ++i) {
        deliver(m_waiting[i % kWalks]);
    }
    return m_found;
}

bool ManyLookups::isWanted(std::size_t key) const {
    return m_data[key].bytes == nullptr && m_keys[key].bytes != nullptr && m_keys[key].size > 0;
}

// Begins the walk of the next key that is wanted. Returns false if there is none.
bool ManyLookups::start(Walk& walk) {
    while (m_started < m_count && !isWanted(m_started)) ++m_started;
    if (m_started == m_count) return false;
    __builtin_prefetch(m_keys[std::min(m_started + kKeysAhead, m_count - 1)].bytes);
    const DictionaryText& key = m_keys[m_started];
    walk = {{key.bytes, key.size}, 0, static_cast<std::uint32_t>(kRootCheck), 0, m_started++};
    askForChild(walk, 0);
    return true;
}

// If there is no such cell, the walk goes to the header, which is not the child of any cell.
void ManyLookups::askForChild(Walk& walk, std::int32_t base) {
    const std::uint32_t child = childCell(base, walk.text.next(walk.place));
    walk.child = child < m_cells.firstLimit() ? child : 0;
    __builtin_prefetch(m_cells.bytes() + std::size_t{walk.child} * kCellBytes);
}

// Takes one step. Returns false if the walk has ended.
bool ManyLookups::advance(Walk& walk) {
    if (m_cells.checkOf(walk.child) != static_cast<std::int32_t>(walk.cell)) return false;
    walk.cell = walk.child;
    const std::int32_t base = m_cells.baseOf(walk.cell);
    if (walk.place < walk.text.size()) {
        askForChild(walk, base);
        return true;
    }
    if (endsKey(base)) found(walk);
    return false;
}

void ManyLookups::found(const Walk& walk) {
    Found& place = m_waiting[m_found % kWalks];
    if (m_found >= kWalks) deliver(place);
    place = {walk.key, m_cells.featureOf(walk.cell)};
    m_image.prefetchFeature(place.feature);
    ++m_found;
}

void ManyLookups::deliver(const Found& found) {
    m_data[found.key] = dataText(m_image.featureText(found.feature));
}

}  // namespace

std::size_t lookUpEach(const ImageView& image, const DictionaryText* keys, std::size_t count,
                       DictionaryText* data) {
    return ManyLookups(image, keys, count, data).run();
}

}  // namespace Dictionary
