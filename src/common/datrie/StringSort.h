// Helper, not installed: bytewise order of many strings.

#ifndef DICTIONARY_STRING_SORT_H
#define DICTIONARY_STRING_SORT_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

namespace Dictionary {

// The number of a string, and its first eight bytes as an integer of the same order. Packed, as
// with padding a sort would move a third more bytes.
struct [[gnu::packed]] SortEntry {
    std::uint64_t prefix;
    std::uint32_t number;
};

inline std::uint64_t prefixOf(std::string_view text) {
    std::uint64_t prefix = 0;
    std::memcpy(&prefix, text.data(), std::min(text.size(), sizeof prefix));
    return __builtin_bswap64(prefix);
}

// Radix sort by the byte of the prefix at bit `shift`, then by those after it. Small groups, and
// strings with equal prefixes, are sorted by `before`.
template <class Before>
void sortByPrefix(SortEntry* strings, SortEntry* scratch, std::size_t count, int shift,
                  const Before& before) {
    constexpr std::size_t kFew = 64;
    constexpr int kDigitBits = 8;
    constexpr std::size_t kDigits = std::size_t{1} << kDigitBits;
    if (count <= kFew || shift < 0) return std::sort(strings, strings + count, before);

    const auto digit = [shift](const SortEntry& string) {
        return string.prefix >> shift & (kDigits - 1);
    };
    std::size_t ends[kDigits] = {};
    for (std::size_t i = 0; i < count; ++i) ++ends[digit(strings[i])];
    if (ends[digit(strings[0])] == count) {
        return sortByPrefix(strings, scratch, count, shift - kDigitBits, before);
    }
    for (std::size_t i = 1; i < kDigits; ++i) ends[i] += ends[i - 1];
    std::copy_n(strings, count, scratch);
    std::size_t starts[kDigits];
    std::copy_n(ends, kDigits, starts);
    for (std::size_t i = count; i > 0; --i) {
        strings[--starts[digit(scratch[i - 1])]] = scratch[i - 1];
    }
    for (std::size_t i = 0; i < kDigits; ++i) {
        const std::size_t size = ends[i] - starts[i];
        if (size > 1) sortByPrefix(strings + starts[i], scratch, size, shift - kDigitBits, before);
    }
}

// The strings `textOf(0)` to `textOf(count - 1)` in bytewise order, equal ones by number. Strings
// that are in order already take one pass.
template <class TextOf>
std::vector<SortEntry> sortedStrings(std::uint32_t count, TextOf textOf) {
    constexpr int kTopShift = 56;
    std::vector<SortEntry> strings;
    strings.reserve(count);
    for (std::uint32_t number = 0; number < count; ++number) {
        strings.push_back({prefixOf(textOf(number)), number});
    }
    const auto before = [&](const SortEntry& left, const SortEntry& right) {
        if (left.prefix != right.prefix) return left.prefix < right.prefix;
        const int order = textOf(left.number).compare(textOf(right.number));
        return order != 0 ? order < 0 : left.number < right.number;
    };
    if (!std::is_sorted(strings.begin(), strings.end(), before)) {
        std::vector<SortEntry> scratch(count);
        sortByPrefix(strings.data(), scratch.data(), count, kTopShift, before);
    }
    return strings;
}

}  // namespace Dictionary

#endif
