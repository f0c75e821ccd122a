// Helper, not installed: walks from neighbouring characters that advance together.
//
// Each step of a walk waits for the cell that the step before leads to, but what neighbouring walks
// wait for does not depend on each other. So all walks of a block take their first step, then those
// left their second one, and so on, and the memory has many cells to fetch at any time.

#ifndef DICTIONARY_WALK_BLOCK_H
#define DICTIONARY_WALK_BLOCK_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "ImageFormat.h"
#include "WalkStep.h"

namespace Dictionary {

// A key found in a block's text, which ends in `cell`.
struct BlockKey {
    std::uint16_t start;   // number of its first character in the block
    std::uint16_t length;  // in characters
    std::uint32_t cell;
};

// Good for block after block.
class WalkBlock {
public:
    static constexpr std::uint32_t kMaxWalks = 256;

    WalkBlock(const CellView& cells, std::int32_t alphabet, const WalkSteps& steps)
        : m_cells(cells), m_alphabet(alphabet), m_steps(steps) {}

    // Walks from each of the `count` characters at `codes` whose code is below the alphabet, as far
    // as the trie goes; behind the text stands a code that leads nowhere. False when there are more
    // or longer keys than there is room for.
    bool walk(const std::int32_t* codes, std::uint32_t count);

    // The same from those characters alone for which `mayBegin(number)` holds.
    template <class MayBegin>
    bool walkWhere(const std::int32_t* codes, std::uint32_t count, MayBegin mayBegin);

    // Calls `found(key)` for every key found, by start, shortest first.
    template <class Found>
    void forEachKey(Found found);

    // Calls `found(key)` for the longest key at each start that has one for which `counts(key)`
    // holds.
    template <class Counts, class Found>
    void forEachLongestKey(Counts counts, Found found);

private:
    static constexpr std::uint32_t kMaxKeys = 4 * kMaxWalks;
    // When no more are left, one after the other is quicker than all at once.
    static constexpr std::uint32_t kFewWalks = 8;
    // Starts of keys are kept with the keys' lengths in the upper half.
    static constexpr unsigned kLengthShift = 16;
    static constexpr std::uint32_t kMaxLength = 0xFFFF;

    bool takeSteps(const std::int32_t* codes, std::uint32_t length, Walks& walks, Walks& ends);
    bool finish(const std::int32_t* codes, std::uint32_t length, const Walks& walks, Walks& ends);

    // For the step to the character number `length` after each start.
    StepGround ground(const std::int32_t* codes, std::uint32_t length) const {
        return {m_cells, codes + length, m_alphabet, length << kLengthShift};
    }

    BlockKey key(std::uint32_t number) const {
        const std::uint32_t start = m_keyStarts[number];
        return {static_cast<std::uint16_t>(start),
                static_cast<std::uint16_t>(start >> kLengthShift), m_keyCells[number]};
    }

    const CellView m_cells;
    const std::int32_t m_alphabet;
    const WalkSteps& m_steps;
    std::uint32_t m_count = 0;  // of characters
    std::uint32_t m_keyCount = 0;
    std::uint32_t m_walkStarts[kMaxWalks + kWalkStepSlack];
    std::uint32_t m_walkCells[kMaxWalks + kWalkStepSlack];
    // Of the keys found; those of one start stand shortest first.
    std::uint32_t m_keyStarts[kMaxKeys + kMaxWalks + kWalkStepSlack];
    std::uint32_t m_keyCells[kMaxKeys + kMaxWalks + kWalkStepSlack];
};

template <class MayBegin>
bool WalkBlock::walkWhere(const std::int32_t* codes, std::uint32_t count, MayBegin mayBegin) {
    m_count = count;
    Walks walks = {0, m_walkStarts, m_walkCells};
    Walks ends = {0, m_keyStarts, m_keyCells};
    for (std::uint32_t start = 0; start < count; ++start) {
        const std::int32_t code = codes[start];
        const bool begins = code < m_alphabet && m_cells.holds(code) && mayBegin(start);
        walks.addIf(begins, start, static_cast<std::uint32_t>(code));
    }
    return takeSteps(codes, 1, walks, ends);
}

template <class Found>
void WalkBlock::forEachKey(Found found) {
    // Where the next key of each start goes.
    std::uint32_t places[kMaxWalks + 1];
    std::fill_n(places, m_count + 1, 0u);
    for (std::uint32_t i = 0; i < m_keyCount; ++i) ++places[key(i).start + 1];
    for (std::uint32_t start = 1; start < m_count; ++start) places[start] += places[start - 1];

    BlockKey byStart[kMaxKeys];
    for (std::uint32_t i = 0; i < m_keyCount; ++i) byStart[places[key(i).start]++] = key(i);
    std::for_each(byStart, byStart + m_keyCount, found);
}

template <class Counts, class Found>
void WalkBlock::forEachLongestKey(Counts counts, Found found) {
    BlockKey longest[kMaxWalks];
    std::fill_n(longest, m_count, BlockKey{0, 0, 0});
    for (std::uint32_t i = 0; i < m_keyCount; ++i) {
        if (counts(key(i))) longest[key(i).start] = key(i);
    }
    std::for_each(longest, longest + m_count, [&](const BlockKey& last) {
        if (last.length > 0) found(last);
    });
}

}  // namespace Dictionary

#endif
