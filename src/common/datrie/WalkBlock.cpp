#include "WalkBlock.h"

#include "Walk.h"

namespace Dictionary {

namespace {

// What a walk reads behind some character.
struct Codes {
    const std::int32_t* codes;

    std::int32_t next(std::size_t& place) const { return codes[place++]; }
};

}  // namespace

bool WalkBlock::walk(const std::int32_t* codes, std::uint32_t count) {
    m_count = count;
    Walks walks = {0, m_walkStarts, m_walkCells};
    Walks ends = {0, m_keyStarts, m_keyCells};
    m_steps.first(ground(codes, 1), count, walks, ends);
    return takeSteps(codes, 2, walks, ends);
}

// Goes on with the walks, which are to take their step number `length`.
bool WalkBlock::takeSteps(const std::int32_t* codes, std::uint32_t length, Walks& walks,
                          Walks& ends) {
    for (; walks.count > kFewWalks; ++length) {
        if (length > kMaxLength) return false;
        m_steps.next(ground(codes, length), walks, ends);
        if (ends.count > kMaxKeys) return false;
    }
    const bool complete = finish(codes, length, walks, ends);
    m_keyCount = ends.count;
    return complete;
}

// Goes on with the walks one by one, which have `length` characters behind them.
bool WalkBlock::finish(const std::int32_t* codes, std::uint32_t length, const Walks& walks,
                       Walks& ends) {
    bool complete = true;
    for (std::uint32_t i = 0; i < walks.count; ++i) {
        const std::uint32_t start = walks.starts[i];
        walkOn(m_cells, walks.cells[i], Codes{codes + start}, length, m_alphabet,
               [&](std::size_t whole, std::uint32_t cell) {
                   const bool fits = whole <= kMaxLength && ends.count < kMaxKeys;
                   complete &= fits;
                   ends.addIf(fits, start | static_cast<std::uint32_t>(whole) << kLengthShift,
                              cell);
               });
    }
    return complete;
}

}  // namespace Dictionary
