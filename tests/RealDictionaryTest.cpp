// Whole dictionaries. A real one, the word list of the Debian package edict, is held against a plain
// map: every key with its data, and everything found in a real text. The sample's image is pinned
// to the byte.

#include <gtest/gtest.h>
#include <iconv.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "DATInterface.h"
#include "DATReader.h"

namespace {

using Groups = std::vector<std::vector<std::pair<int, std::string>>>;
using Records = std::vector<std::tuple<int, int, std::string>>;  // start, end, feature text

std::string contentsOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// An image file that goes with the object.
class ImageFile {
public:
    explicit ImageFile(const std::string& sourcePath) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        buildTree(sourcePath.c_str(), m_path.c_str());
        testing::internal::GetCapturedStderr();
        testing::internal::GetCapturedStdout();
    }
    ~ImageFile() { unlink(m_path.c_str()); }
    const std::string& path() const { return m_path; }

private:
    const std::string m_path = testing::TempDir() + "image." + std::to_string(getpid());
};

std::string utf8FromEucJp(std::string text) {
    std::string utf8(2 * text.size(), '\0');
    char* from = text.data();
    char* to = utf8.data();
    std::size_t left = text.size();
    std::size_t room = utf8.size();
    const iconv_t conversion = iconv_open("UTF-8", "EUC-JP");
    EXPECT_EQ(iconv(conversion, &from, &left, &to, &room), 0u);
    iconv_close(conversion);
    utf8.resize(utf8.size() - room);
    return utf8;
}

struct WordList {
    std::string source;
    std::unordered_map<std::string, std::string> features;
    std::size_t longestKey = 0;
};

// Each line is a headword, a blank and the data.
WordList wordListOf(const std::string& text) {
    WordList words;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::replace(line.begin(), line.end(), '\t', ' ');
        const std::size_t blank = line.find(' ');
        const std::string key = line.substr(0, blank);
        const std::string data = line.substr(blank + 1) + '\t';
        words.source += key + '\t' + line.substr(blank + 1) + '\n';
        std::string& feature = words.features[key];
        feature += feature.empty() ? data : ';' + data;
        words.longestKey = std::max(words.longestKey, key.size());
    }
    return words;
}

Groups keysByStart(const WordList& words, const std::string& text) {
    Groups groups(text.size());
    for (std::size_t start = 0; start < text.size(); ++start) {
        const std::size_t longest = std::min(words.longestKey, text.size() - start);
        for (std::size_t length = 1; length <= longest; ++length) {
            const auto found = words.features.find(text.substr(start, length));
            if (found == words.features.end()) continue;
            groups[start].emplace_back(static_cast<int>(length), found->second);
        }
    }
    return groups;
}

struct Expected {
    Records all, longest;
    std::string plain, detailed;
};

Expected expectedOf(const Groups& groups, const std::string& text) {
    Expected expected;
    std::size_t free = 0;
    for (std::size_t start = 0; start < groups.size(); ++start) {
        if (groups[start].empty()) continue;
        const int first = static_cast<int>(start);
        for (const auto& [length, feature] : groups[start]) {
            expected.all.emplace_back(first, first + length - 1, feature);
        }
        const auto& [length, feature] = groups[start].back();
        const std::string word = text.substr(start, static_cast<std::size_t>(length));
        expected.plain += word + '\t';
        expected.detailed += word + '/' + std::to_string(start) + ':' + feature + '\t';
        if (start < free) continue;
        expected.longest.push_back(expected.all.back());
        free = start + word.size();
    }
    return expected;
}

Records recordsOf(const std::vector<Dictionary::SPOS>& matches, const std::string& image) {
    std::int32_t header[3];
    std::memcpy(header, image.data(), sizeof header);
    const auto [featureBytes, ownCheck, cellBytes] = header;
    CFeatureDataContainer area;
    area.reset(false, image.data() + cellBytes, featureBytes, featureBytes);
    Records records;
    for (const auto& match : matches) {
        CFeatureData feature;
        area.read(feature, match.feature);
        records.emplace_back(match.start, match.end, feature.text);
    }
    return records;
}
