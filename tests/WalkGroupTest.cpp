// Compares walks that advance together with walks one by one, for every kind of machine.

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "DATWriter.h"
#include "EachKernel.h"
#include "LetterCoder.h"
#include "TextSearch.h"
#include "Walk.h"

namespace {

using Dictionary::EncodedText;
using Dictionary::TextSearch;

using Found = std::vector<std::tuple<std::size_t, std::size_t, std::int32_t>>;

// For each place, whether it is closed: no key may begin or end there.
using Closed = std::vector<std::uint8_t>;

Found oneByOne(const Dictionary::CellView& cells, const EncodedText& text, std::int32_t alphabet,
               bool longest, const Closed& closed) {
    Found found;
    for (std::size_t from = 0; from < text.size(); ++from) {
        if (text.codes()[from] >= alphabet || closed[from] != 0) continue;
        const std::size_t before = found.size();
        const auto add = [&](std::size_t end, std::int32_t feature) {
            if (closed[end] != 0) return;
            if (longest) found.resize(before);
            found.emplace_back(from, end, feature);
        };
        Dictionary::walkFrom(cells, text, from, alphabet, add);
    }
    return found;
}

Found together(TextSearch search, std::int32_t alphabet, bool longest, const Closed* closed) {
    if (closed != nullptr) search.closePlaces(closed->data());
    Found found;
    const auto add = [&](std::size_t from, std::size_t end, std::int32_t feature) {
        found.emplace_back(from, end, feature);
    };
    if (longest) {
        search.forEachLongestKey(alphabet, add);
    } else {
        search.forEachKey(alphabet, add);
    }
    return found;
}

std::unique_ptr<char[]> imageOf(LetterCoder& coder, const std::vector<std::string>& keys) {
    Dictionary::CDATWriter writer(&coder, false);
    for (const std::string& key : keys) writer.addKeys(key.c_str(), key);
    testing::internal::CaptureStdout();
    writer.buildDAT();
    testing::internal::GetCapturedStdout();
    return std::unique_ptr<char[]>(writer.write());
}

TEST(WalkGroup, FindsWhatWalksOneByOneFind) {
    std::mt19937 random(11);
    LetterCoder coder;
    const auto text = [&](std::size_t size, unsigned letters) {
        std::string result;
        while (result.size() < size) result += static_cast<char>('A' + random() % letters);
        return result;
    };
    for (int round = 0; round < 60; ++round) {
        const unsigned letters = 1 + random() % 4;
        std::vector<std::string> keys;
        for (int i = 0; i < 40; ++i) keys.push_back(text(1 + random() % 6, letters));
        // In a text of one letter, walks to these keys take more steps than a group does.
        for (std::size_t size = 1; round % 10 == 0 && size < 90; ++size)
            keys.push_back(text(size, 1));
        const std::unique_ptr<char[]> image = imageOf(coder, keys);
        const Dictionary::ImageView view(image.get());
        // From texts shorter than a register to several groups; some letters are in no key.
        for (const std::size_t size : {0u, 1u, 9u, 17u, 63u, 64u, 65u, 300u}) {
            const std::string content = text(size, round % 10 == 0 ? 1 : letters + 1);
            const EncodedText codes(coder, content.c_str(), -1, round % 2 == 1);
            const std::size_t places = codes.size() + 1 + TextSearch::kClosedPadding;
            Closed open(places), closed(places);
            for (std::uint8_t& place : closed) place = random() % 3 == 0;
            // The smaller alphabet leaves out letters that keys have.
            for (const std::int32_t alphabet : {64, 3}) {
                for (const bool longest : {false, true}) {
                    const Found all = oneByOne(view.cells(), codes, alphabet, longest, open);
                    const Found some = oneByOne(view.cells(), codes, alphabet, longest, closed);
                    forEachKernel([&] {
                        const TextSearch search(view.cells(), codes);
                        EXPECT_EQ(together(search, alphabet, longest, nullptr), all)
                            << "round " << round << ", " << size;
                        EXPECT_EQ(together(search, alphabet, longest, &closed), some)
                            << "round " << round << ", " << size;
                    });
                }
            }
        }
    }
}

}  // namespace
