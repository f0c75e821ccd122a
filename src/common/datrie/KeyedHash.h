// Helper, not installed: a hash of byte strings that cannot be made to collide on purpose.

#ifndef DICTIONARY_KEYED_HASH_H
#define DICTIONARY_KEYED_HASH_H

#include <cstdint>
#include <string_view>

namespace Dictionary {

// The value of a polynomial modulo a prime. Its coefficients are the text's bytes, seven at a time;
// the point is random and chosen for each object (Dietzfelbinger et al., "Polynomial hash functions
// are reliable", 1992). Without knowing the point, texts with equal hashes are found by chance
// only.
class KeyedHash {
public:
    KeyedHash();

    std::uint32_t operator()(std::string_view text) const;

private:
    std::uint64_t m_point;
};

}  // namespace Dictionary

#endif
