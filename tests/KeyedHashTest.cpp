#include "KeyedHash.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

TEST(KeyedHash, DependsOnEveryByteAndOnItsKey) {
    const Dictionary::KeyedHash hash, other;
    std::set<std::string> texts;
    for (std::size_t size = 0; size < 40; ++size) {
        const std::string text(size, '\0');
        texts.insert(text);
        for (std::size_t i = 0; i < size; ++i) {
            for (const char byte : {'\1', '\x80'}) {
                std::string changed = text;
                changed[i] = byte;
                texts.insert(changed);
            }
        }
    }
    std::set<std::uint32_t> hashes;
    std::size_t alike = 0;
    for (const std::string& text : texts) {
        hashes.insert(hash(text));
        alike += hash(text) == other(text);
        EXPECT_EQ(hash(text), hash(std::string(text)));
    }
    // By chance, two of so few hashes are equal once in thousands of runs.
    EXPECT_GE(hashes.size() + 2, texts.size());
    EXPECT_LE(alike, 2u);
}

}  // namespace
