// Whole dictionaries. A real one, the word list of the Debian package edict, is held against a
// plain map: every key with its data, and everything found in a real text. The sample's image is
// pinned to the byte.

#include <gtest/gtest.h>
#include <iconv.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <tuple>

#include "DATInterface.h"
#include "DATReader.h"
#include "TemporaryFile.h"

namespace {

constexpr std::size_t kTextBytes = 300000;

using Words = std::map<std::string, std::string>;                // key to feature text
using Records = std::vector<std::tuple<int, int, std::string>>;  // start, end, feature text
using Groups = std::vector<std::vector<std::pair<int, std::string>>>;

std::string utf8FromEucJp(std::string text) {
    std::string utf8(2 * text.size(), '\0');
    char *from = text.data(), *to = utf8.data();
    std::size_t left = text.size(), room = utf8.size();
    const iconv_t conversion = iconv_open("UTF-8", "EUC-JP");
    EXPECT_EQ(iconv(conversion, &from, &left, &to, &room), 0u);
    iconv_close(conversion);
    return utf8.substr(0, utf8.size() - room);
}

// Builds without a word.
void buildQuietly(const char* source, const TemporaryFile& image) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    buildTree(source, image.path());
    testing::internal::GetCapturedStderr();
    testing::internal::GetCapturedStdout();
}

// Takes headword, blank and data from each line and puts them into `source`.
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

// Looks every piece of `text` up that is a key or begins one.
Groups keysByStart(const Words& words, const std::string& text) {
    Groups groups(text.size());
    for (std::size_t start = 0; start < text.size(); ++start) {
        for (std::size_t length = 1; length <= text.size() - start; ++length) {
            const auto next = words.lower_bound(text.substr(start, length));
            if (next == words.end() || text.compare(start, length, next->first, 0, length)) break;
            if (next->first.size() > length) continue;
            groups[start].emplace_back(static_cast<int>(length), next->second);
        }
    }
    return groups;
}

// Every key, the longest words one after the other, and the two results of search.
using Findings = std::tuple<Records, Records, std::string, std::string>;

Findings expectedFindings(const Groups& groups, const std::string& text) {
    Findings findings;
    auto& [all, longest, keys, keysWithData] = findings;
    std::size_t wordEnd = 0;
    for (std::size_t start = 0; start < groups.size(); ++start) {
        if (groups[start].empty()) continue;
        const int first = static_cast<int>(start);
        for (const auto& [length, feature] : groups[start]) {
            all.emplace_back(first, first + length - 1, feature);
        }
        const auto& [length, feature] = groups[start].back();
        const std::string key = text.substr(start, static_cast<std::size_t>(length));
        keys += key + '\t';
        keysWithData += key + '/' + std::to_string(start) + ':' + feature + '\t';
        if (start < wordEnd) continue;
        longest.push_back(all.back());
        wordEnd = start + key.size();
    }
    return findings;
}

Records recordsOf(const std::vector<Dictionary::SPOS>& matches, const std::string& image) {
    int header[3];  // the feature area's size, a check, the cell array's size
    std::memcpy(header, image.data(), sizeof header);
    CFeatureDataContainer area;
    area.reset(false, image.data() + header[2], header[0], header[0]);
    Records records;
    for (const auto& match : matches) {
        CFeatureData feature;
        area.read(feature, match.feature);
        records.emplace_back(match.start, match.end, feature.text);
    }
    return records;
}

std::string found(const std::string& text, void* handle, bool withFeatures) {
    char* const result = search(text.c_str(), handle, withFeatures);
    const std::string keys = result;
    freeResult(result);
    return keys;
}

TEST(RealDictionary, FindsWhatAPlainMapFinds) {
    std::ifstream wordList("/usr/share/edict/edict", std::ios::binary);
    if (!wordList) GTEST_SKIP() << "the package edict is not installed";
    const std::string everything = utf8FromEucJp({std::istreambuf_iterator<char>(wordList), {}});
    const TemporaryFile source, imageFile;
    const Words words = wordsOf(everything, source);
    ASSERT_GT(words.size(), 100000u);
    buildQuietly(source.path(), imageFile);
    std::string image = imageFile.content();

    Dictionary::CUTF8Coder coder;
    Dictionary::CDATReader reader(&coder, image.data(), false);
    for (const auto& [key, feature] : words) {
        std::string answer;
        reader.exactMatch(key.c_str(), answer);
        ASSERT_EQ(answer, feature) << key;
    }

    const std::size_t lineStart = everything.find('\n', everything.size() / 2) + 1;
    const std::string text = everything.substr(lineStart, kTextBytes);
    Groups groups;
    reader.allMatch(text.c_str(), groups, false, -1);
    const Groups expected = keysByStart(words, text);
    EXPECT_TRUE(groups == expected);
    std::vector<Dictionary::SPOS> all, longest;
    reader.allMatch(text.c_str(), all, false, -1);
    reader.maxMatch(text.c_str(), longest);
    void* const handle = loadBin(imageFile.path());
    EXPECT_TRUE(expectedFindings(expected, text) ==
                Findings(recordsOf(all, image), recordsOf(longest, image),
                         found(text, handle, false), found(text, handle, true)));
    destroyBin(handle);
}

TEST(SampleDictionary, ImageStaysTheSameToTheByte) {
    const TemporaryFile image;
    buildQuietly(SAMPLE_SOURCE, image);
    std::uint64_t digest = 0xCBF29CE484222325;  // FNV-1a
    for (const char byte : image.content()) {
        digest = (digest ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    }
    EXPECT_EQ(digest, 0x07D698B2F27ED903u);
}

}  // namespace
