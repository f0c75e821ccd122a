// What is looked up: a dictionary's keys, keys that it nearly has, and a text.

#ifndef BENCH_MATERIAL_H
#define BENCH_MATERIAL_H

#include <random>
#include <unordered_set>

#include "Source.h"

namespace Bench {

using Texts = std::vector<std::string>;

class Material {
public:
    // Reads `base`.tsv and `base`.txt.
    explicit Material(const std::string& base) : whole{readFile(base + ".txt")} {
        const Source source(readFile(base + ".tsv"));
        std::vector<Entry> entries = source.entries();
        std::shuffle(entries.begin(), entries.end(), std::mt19937_64(kSeed));
        for (const Entry& entry : entries) keys.emplace_back(entry.key);
        aKey.push_back(keys.front());
        makeNearMisses();
        cutLines();
    }

    Texts keys;        // all of them, in random order
    Texts nearMisses;  // as many as keys
    Texts lines;       // of the text
    Texts whole;       // the text
    Texts aKey;

private:
    static constexpr std::uint64_t kSeed = 1;

    static std::size_t lastCharacter(const std::string& text) {
        std::size_t at = text.size() - 1;
        while (at > 0 && (text[at] & 0xC0) == 0x80) --at;
        return at;
    }

    // Keys with another last character or, where that is a key, too, with more at their end.
    void makeNearMisses() {
        const std::unordered_set<std::string_view> known(keys.begin(), keys.end());
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const std::string& other = keys[(i + 1) % keys.size()];
            const std::string end = other.substr(lastCharacter(other));
            std::string miss = keys[i].substr(0, lastCharacter(keys[i])) + end;
            if (known.count(miss) != 0) miss = keys[i] + end;
            while (known.count(miss) != 0) miss += end;
            nearMisses.push_back(std::move(miss));
        }
    }

    void cutLines() {
        const std::string& text = whole.front();
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = text.find('\n', start);
            lines.push_back(text.substr(start, end - start));
            start = end + 1;
        }
    }
};

}  // namespace Bench

#endif
