// Whole dictionaries. A real one, the word list of the Debian package edict, is compared with a
// plain map: every key with its data, and everything found in a real text. Where the library marisa
// is installed, what is found is compared with that, too. The images of this dictionary and of the
// sample are pinned to the byte.

#if __has_include(<marisa.h>)
#include <marisa.h>
#endif

#include <algorithm>
#include <map>
#include <memory>
#include <sstream>
#include <tuple>

#include "DATInterface.h"
#include "DATReader.h"
#include "TemporaryFile.h"

namespace {

constexpr char kWordList[] = "/usr/share/edict/edict";
constexpr std::size_t kTextBytes = 300000;

using Words = std::map<std::string, std::string>;  // key to feature text
using Groups = std::vector<std::vector<std::pair<int, std::string>>>;

// Takes a headword and data, with a blank between them, from each line and writes them to `source`.
Words wordsOf(const std::string& text, const TemporaryFile& source) {
    Words words;
    std::ofstream records(source.path(), std::ios::binary);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::replace(line.begin(), line.end(), '\t', ' ');
        const std::string key = line.substr(0, line.find(' '));
        const std::string data = line.substr(key.size() + 1);
        records << key << '\t' << data << '\n';
        std::string& feature = words[key];
        feature += (feature.empty() ? "" : ";") + data + '\t';
    }
    return words;
}

// The keys by their start, the first and last byte of the longest words one after the other, and
// the two results of search.
using Findings = std::tuple<Groups, std::vector<std::pair<int, int>>, std::string, std::string>;

// Looks up every piece of `text` that is a key or begins one.
Findings findingsOf(const Words& words, const std::string& text) {
    Findings findings;
    auto& [groups, longest, keys, keysWithData] = findings;
    groups.resize(text.size());
    for (std::size_t start = 0, wordEnd = 0; start < text.size(); ++start) {
        std::string key;
        for (std::size_t length = 1; length <= text.size() - start; ++length) {
            const auto next = words.lower_bound(text.substr(start, length));
            if (next == words.end() || text.compare(start, length, next->first, 0, length)) break;
            if (next->first.size() > length) continue;
            key = next->first;
            groups[start].emplace_back(static_cast<int>(length), next->second);
        }
        if (key.empty()) continue;
        keys += key + '\t';
        keysWithData += key + '/' + std::to_string(start) + ':' + words.at(key) + '\t';
        if (start < wordEnd) continue;
        wordEnd = start + key.size();
        longest.emplace_back(start, wordEnd - 1);
    }
    return findings;
}

std::string found(const std::string& text, void* handle, bool withFeatures) {
    char* const result = search(text.c_str(), handle, withFeatures);
    const std::string keys = result;
    freeResult(result);
    return keys;
}

std::uint64_t digestOf(const std::string& bytes) {
    std::uint64_t digest = 0xCBF29CE484222325;  // FNV-1a
    for (const char byte : bytes) {
        digest = (digest ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    }
    return digest;
}

class RealDictionary : public testing::Test {
protected:
    void SetUp() override {
        if (access(kWordList, R_OK) != 0) GTEST_SKIP() << "the package edict is not installed";
        const TemporaryFile utf8, source;
        const std::string conversion = std::string("iconv -f EUC-JP -t UTF-8 ") + kWordList + " > ";
        ASSERT_EQ(std::system((conversion + utf8.path()).c_str()), 0);
        everything = utf8.content();
        words = wordsOf(everything, source);
        ASSERT_GT(words.size(), 100000u);
        printedBy([&] { buildTree(source.path(), imageFile.path()); });
        image = imageFile.content();
        reader = std::make_unique<Dictionary::CDATReader>(&coder, &image[0], false);
        const std::size_t lineStart = everything.find('\n', everything.size() / 2) + 1;
        text = everything.substr(lineStart, kTextBytes);
    }

    const TemporaryFile imageFile;
    Words words;
    std::string everything, image, text;
    Dictionary::CUTF8Coder coder;
    std::unique_ptr<Dictionary::CDATReader> reader;
};

TEST_F(RealDictionary, FindsWhatAPlainMapFinds) {
    for (const auto& [key, feature] : words) {
        std::string answer;
        reader->exactMatch(key.c_str(), answer);
        ASSERT_EQ(answer, feature) << key;
    }
    void* const handle = loadBin(imageFile.path());
    Findings findings({}, {}, found(text, handle, false), found(text, handle, true));
    destroyBin(handle);
    reader->allMatch(text.c_str(), std::get<0>(findings), false, -1);
    std::vector<Dictionary::SPOS> longest;
    reader->maxMatch(text.c_str(), longest);
    for (const auto& word : longest) std::get<1>(findings).emplace_back(word.start, word.end);
    EXPECT_TRUE(findings == findingsOf(words, text));
}

TEST_F(RealDictionary, ImageStaysTheSameToTheByte) {
    if (digestOf(everything) != 0x317095EDDDC5F77Du) GTEST_SKIP() << "another edition of edict";
    EXPECT_EQ(digestOf(image), 0x40BAF392A99A74BEu);
}

#if __has_include(<marisa.h>)
TEST_F(RealDictionary, FindsWhatMarisaFinds) {
    marisa::Keyset keys;
    for (const auto& word : words) keys.push_back(word.first.data(), word.first.size());
    marisa::Trie trie;
    trie.build(keys);
    marisa::Agent agent;
    std::vector<std::pair<std::size_t, std::size_t>> expected, actual;  // first and last bytes
    for (std::size_t start = 0; start < text.size(); ++start) {
        agent.set_query(&text[start], text.size() - start);
        while (trie.common_prefix_search(agent)) {
            expected.emplace_back(start, start + agent.key().length() - 1);
        }
    }
    std::vector<Dictionary::SPOS> every;
    reader->allMatch(text.c_str(), every, false, -1);
    for (const auto& word : every) actual.emplace_back(word.start, word.end);
    EXPECT_GT(actual.size(), 10000u);
    EXPECT_TRUE(actual == expected);
}
#endif

TEST(SampleDictionary, ImageStaysTheSameToTheByte) {
    const TemporaryFile image;
    printedBy([&] { buildTree(SAMPLE_SOURCE, image.path()); });
    EXPECT_EQ(digestOf(image.content()), 0x07D698B2F27ED903u);
}

}  // namespace
