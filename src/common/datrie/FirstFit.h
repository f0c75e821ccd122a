// Helper, not installed: the inner loop of the search for a position at which a set of labels fits,
// for each width of register that a machine may have.

#ifndef DICTIONARY_FIRST_FIT_H
#define DICTIONARY_FIRST_FIT_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Dictionary {

// Each stream holds one bit per position. Returns the first position at or after 0 whose bit is set
// in all streams. There must be one, and the streams must be readable for kFirstFitSlack bytes
// after it. All kernels return the same position.
std::int64_t firstFit(const std::vector<const std::uint8_t*>& streams);

constexpr std::size_t kFirstFitSlack = 64;

}  // namespace Dictionary

#endif
