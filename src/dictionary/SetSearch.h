// Helper, not installed: the search from every character of a text, in several images, in folded
// ones, and for whole words.

#ifndef DICTIONARY_SET_SEARCH_H
#define DICTIONARY_SET_SEARCH_H

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <vector>

#include "EncodedText.h"
#include "InsideWords.h"
#include "KeyScan.h"
#include "SetKeys.h"
#include "SetText.h"
#include "TextSearch.h"
#include "Walk.h"

namespace Dictionary {

// A key in a text.
struct SetKey {
    std::size_t from;
    KeyAt key;
};

// Whether a key comes before one from `from` to `end`.
inline bool comesBefore(const SetKey& key, std::size_t from, std::size_t end) {
    return key.from != from ? key.from < from : key.key.end < end;
}

class SetSearch {
public:
    // `images` and `text` must outlive the object.
    SetSearch(const Images& images, const SetRules& rules, const SetText& text);

    // Calls `found(key)` for every key, in the order of start, end and image.
    template <class Found>
    void forEachKey(const Found& found) const;

    // The same for the longest keys at each character.
    template <class Found>
    void forEachLongestKey(const Found& found) const;

    // Calls `found(key)` for the longest key at the first character that begins one, then for the
    // first after that key, and so on.
    template <class Found>
    void forEachSegment(const Found& found) const;

private:
    // Which of the keys at a character count.
    enum class Counts { kAll, kLongest };

    // What is searched in one image.
    struct Part {
        const CellView& cells;
        const EncodedText& text;
        const std::uint8_t* closed;  // by place: whether it is inside a word; null if none is

        bool isClosed(std::size_t place) const { return closed != nullptr && closed[place] != 0; }
        TextSearch search() const;
    };

    // The keys of all images except the first, block by block. Of keys at the same stretch, that of
    // the last image counts; with everyImage, all of them do.
    class LaterKeys {
    public:
        using Keys = std::pmr::vector<SetKey>;

        LaterKeys(const SetSearch& search, Counts counts) : m_search(search), m_counts(counts) {}

        // Those that begin in the block of characters from `first` on, valid until the next call.
        const Keys& in(std::size_t first);

    private:
        static constexpr std::size_t kRoom = 8192;  // bytes

        void list(std::uint32_t image, std::size_t first);
        void merge();

        const SetSearch& m_search;
        const Counts m_counts;
        // A few keys at a time take no memory from the heap.
        alignas(SetKey) char m_room[kRoom];
        std::pmr::monotonic_buffer_resource m_memory{m_room, sizeof m_room};
        Keys m_keys{&m_memory}, m_ofImage{&m_memory}, m_merged{&m_memory};  // of a block
    };

    // Passes on the keys of the first image.
    template <class Found>
    static auto takerOf(const Found& found) {
        return [&found](std::size_t from, std::size_t end, std::int32_t feature) {
            found(SetKey{from, {end, 0, feature}});
        };
    }

    template <Counts counts, class Found>
    void forEachMergedKey(const Found& found) const;
    template <Counts counts, class Found>
    void mergeBlock(const TextSearch& first, std::size_t block, const LaterKeys::Keys& later,
                    const Found& found) const;
    template <Counts counts, class Found>
    static void searchBlock(const TextSearch& search, std::size_t block, const Found& found);
    bool longestAt(std::size_t from, KeyAt& key) const;

    std::size_t size() const { return m_text.any().size(); }

    const SetRules m_rules;
    const SetText& m_text;
    InsideWords m_insideWords[2];  // by whether the text is folded
    std::vector<Part> m_parts;     // by image
};

template <class Found>
void SetSearch::forEachKey(const Found& found) const {
    if (m_parts.size() > 1) return forEachMergedKey<Counts::kAll>(found);
    m_parts.front().search().forEachKey(kAlphabet, takerOf(found));
}

template <class Found>
void SetSearch::forEachLongestKey(const Found& found) const {
    if (m_parts.size() > 1) return forEachMergedKey<Counts::kLongest>(found);
    m_parts.front().search().forEachLongestKey(kAlphabet, takerOf(found));
}

template <class Found>
void SetSearch::forEachSegment(const Found& found) const {
    if (m_parts.size() == 1) return m_parts.front().search().forEachSegment(takerOf(found));
    KeyAt key = {};
    for (std::size_t from = 0; from < size();) {
        const bool isKey = longestAt(from, key);
        if (isKey) found(SetKey{from, key});
        from = isKey ? key.end : from + 1;
    }
}

// The first image tends to be the largest. It is searched as if it were alone, except in blocks in
// which other images have keys.
template <SetSearch::Counts counts, class Found>
void SetSearch::forEachMergedKey(const Found& found) const {
    LaterKeys later(*this, counts);
    const TextSearch first = m_parts.front().search();
    for (std::size_t block = 0; block < size(); block += TextSearch::kBlock) {
        const LaterKeys::Keys& others = later.in(block);
        if (others.empty()) {
            searchBlock<counts>(first, block, takerOf(found));
        } else {
            mergeBlock<counts>(first, block, others, found);
        }
    }
}

// If only the longest keys count, the later keys at each start have the same length.
template <SetSearch::Counts counts, class Found>
void SetSearch::mergeBlock(const TextSearch& first, std::size_t block, const LaterKeys::Keys& later,
                           const Found& found) const {
    auto other = later.begin();
    searchBlock<counts>(first, block, [&](std::size_t from, std::size_t end, std::int32_t feature) {
        for (; other != later.end() && comesBefore(*other, from, end); ++other) {
            if (counts == Counts::kAll || other->from < from) found(*other);
        }
        const bool meets = other != later.end() && other->from == from;
        const bool isCounted =
            !meets || (other->key.end == end ? m_rules.everyImage : counts == Counts::kAll);
        if (isCounted) found(SetKey{from, {end, 0, feature}});
    });
    for (; other != later.end(); ++other) found(*other);
}

template <SetSearch::Counts counts, class Found>
void SetSearch::searchBlock(const TextSearch& search, std::size_t block, const Found& found) {
    if constexpr (counts == Counts::kAll) {
        search.forEachKeyIn(block, kAlphabet, found);
    } else {
        search.forEachLongestKeyIn(block, kAlphabet, found);
    }
}

}  // namespace Dictionary

#endif
