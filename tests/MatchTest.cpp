// Lookups as records, against a model that knows a text as characters and the keys as a map.

#include <map>
#include <random>
#include <tuple>

#include "DATDictionary.h"
#include "LookupModel.h"
#include "TemporaryFile.h"

namespace {

using Dictionary::CImage;

struct Character {
    std::string bytes;
    std::size_t utf16 = 1;
};

using Text = std::vector<Character>;
using Words = std::map<std::string, std::string>;
using Found = std::vector<std::tuple<std::size_t, std::size_t, std::string>>;

// Codes as keys of the modern interface have them. A key behind '<' loses its first one.
class LabelCoder : public Dictionary::CUTF8Coder {
public:
    int encodeString(const char* text, std::vector<int>& codes,
                     std::vector<Dictionary::SPOS>& positions, int length) override {
        std::vector<int> characters;
        CUTF8Coder::encodeString(text, characters, positions, length);
        for (const int code : characters) {
            if (code >= 0x10000) codes.push_back(0xD800 + ((code - 0x10000) >> 10));
            codes.push_back(code < 0x10000 ? code : 0xDC00 + (code & 0x3FF));
        }
        if (text[0] == '<') codes.erase(codes.begin(), codes.begin() + 2);
        positions.resize(codes.size());
        return 1;
    }
};

CImage imageOf(const Words& words) {
    std::map<std::string, std::string> pairs;
    for (const auto& [key, data] : words) pairs[key] = data + '\t';
    LabelCoder coder;
    std::unique_ptr<LookupImage> image;
    printedBy([&] { image = std::make_unique<LookupImage>(coder, pairs, false); });
    const TemporaryFile file(image->bytes());
    return CImage::open(file.path(), DICTIONARY_OPEN_COPY);
}

std::string bytesOf(const Text& text, std::size_t from, std::size_t to) {
    std::string bytes;
    for (std::size_t i = from; i < to; ++i) bytes += text[i].bytes;
    return bytes;
}

std::size_t sizeOf(const Text& text, std::size_t from, std::size_t to, int unit) {
    if (unit == DICTIONARY_UNIT_BYTE) return bytesOf(text, from, to).size();
    std::size_t size = 0;
    for (std::size_t i = from; i < to; ++i) {
        size += unit == DICTIONARY_UNIT_UTF16 ? text[i].utf16 : 1;
    }
    return size;
}

Found expected(const Words& words, const Text& text, int mode, int unit) {
    Found all;
    for (std::size_t from = 0, next = 1; from < text.size(); from = next, next = from + 1) {
        bool isFirst = true;
        for (std::size_t to = from + 1; to <= text.size(); ++to) {
            const auto word = words.find(bytesOf(text, from, to));
            if (word == words.end()) continue;
            if (mode != DICTIONARY_FIND_ALL && !isFirst) all.pop_back();
            isFirst = false;
            if (mode == DICTIONARY_FIND_SEGMENT) next = to;
            all.emplace_back(sizeOf(text, 0, from, unit), sizeOf(text, from, to, unit),
                             word->second + '\t');
        }
    }
    return all;
}

Found found(const CImage& image, const std::string& text, int mode, int unit) {
    Found all;
    for (const Dictionary::SMatch& match : image.find(static_cast<DictionaryFindMode>(mode), text,
                                                      static_cast<DictionaryUnit>(unit))) {
        all.emplace_back(match.start, match.length, match.dataText());
    }
    return all;
}

TEST(Match, EqualsTheModelInEveryModeAndUnit) {
    Words words = {{"a", "1"},
                   {"ab", "22"},
                   {"aba", "333"},
                   {"b\u00e9", ""},
                   {"\u00e9", "5"},
                   {"\u4e2d", "6"},
                   {"\uffff", "7"},
                   {"bb\uffff", "8"},
                   {"\U0001F600", "9"},
                   {"\U0001F600a", "10"},
                   {"b\U0001F600\U00010061", "11"}};
    // No key begins inside a character, whatever an image says.
    words["<\U0001F600a"] = words["<\U00010061"] = "none";
    const CImage image = imageOf(words);
    const Text letters = {{"a"},    {"b"},    {"\u00e9"}, {"\u4e2d"},        {"\uffff"},
                          {"\x80"}, {"\xF5"}, {{'\0'}},   {"\U0001F600", 2}, {"\U00010061", 2}};
    const Text surrogates = {{"\xED"}, {"\xA0"}, {"\xBD"}, {"\xED"}, {"\xB8"}, {"\x80"}};
    std::mt19937 random(11);
    for (int round = 0; round < 3000 && !testing::Test::HasFailure(); ++round) {
        Text text;
        for (auto i = random() % 40; i > 0; --i) text.push_back(letters[random() % letters.size()]);
        if (round % 10 == 0) text.insert(text.end(), surrogates.begin(), surrogates.end());
        const std::string bytes = bytesOf(text, 0, text.size());
        for (int mode = DICTIONARY_FIND_ALL; mode <= DICTIONARY_FIND_SEGMENT; ++mode) {
            for (int unit = DICTIONARY_UNIT_BYTE; unit <= DICTIONARY_UNIT_UTF16; ++unit) {
                EXPECT_EQ(found(image, bytes, mode, unit), expected(words, text, mode, unit));
            }
        }
        std::string data;
        EXPECT_EQ(image.lookup(bytes, data), words.count(bytes) > 0);

        std::string listed;
        for (const auto& [start, length, feature] :
             found(image, bytes, DICTIONARY_FIND_AS_SEARCH, DICTIONARY_UNIT_BYTE)) {
            listed +=
                bytes.substr(start, length) + '/' + std::to_string(start) + ':' + feature + '\t';
        }
        char* const result = search(bytes.c_str(), image.handle(), true);
        EXPECT_EQ(listed, result);
        freeResult(result);
    }
}

TEST(Match, SeveralTextsShareAList) {
    const CImage image = imageOf({{"a", "1"}, {"ab", "2"}});
    const char* const texts[] = {"xab", nullptr, "none", "a"};
    const std::size_t sizes[] = {3, 0, 4, 1};
    const std::size_t tooLong = std::size_t{1} << 31;
    std::vector<std::size_t> ends(4);
    DictionaryMatches matches = {nullptr, 0, 0};
    for (int again = 0; again < 2; ++again) {
        EXPECT_TRUE(dictionaryFindInEach(image.handle(), DICTIONARY_FIND_ALL, DICTIONARY_UNIT_BYTE,
                                         texts, sizes, 4, &matches, ends.data()));
        EXPECT_EQ(ends, (std::vector<std::size_t>{2, 2, 2, 3}));
        EXPECT_EQ(matches.count, 3u);
    }
    for (const auto& [mode, unit] : {std::pair{4, 0}, {-1, 0}, {0, -1}, {0, 3}}) {
        EXPECT_FALSE(dictionaryFindInEach(image.handle(), mode, unit, texts, sizes, 4, &matches,
                                          ends.data()));
        EXPECT_EQ(ends, std::vector<std::size_t>(4));
    }
    EXPECT_FALSE(dictionaryFind(image.handle(), 0, 0, "a", 1, nullptr));
    EXPECT_FALSE(dictionaryFind(image.handle(), 0, 0, "a", tooLong, &matches));
    EXPECT_FALSE(dictionaryLookup(image.handle(), "a", tooLong, nullptr, nullptr));
    EXPECT_EQ(matches.count, 0u);
    dictionaryReleaseMatches(&matches);
    EXPECT_EQ(matches.items, nullptr);
    dictionaryReleaseMatches(nullptr);
}

TEST(Match, HandlesWithoutAnImageFindNothing) {
    const TemporaryFile empty;
    const int descriptor = nextDescriptor();
    for (const char* name : {"/no/such/file", empty.path(), ""}) {
        void* handle = nullptr;
        if (*name != '\0') printedBy([&] { handle = loadBin(name); });
        DictionaryMatches matches = {nullptr, 0, 0};
        EXPECT_TRUE(dictionaryFind(handle, 0, 0, "a", 1, &matches));
        const char* data = "before";
        EXPECT_FALSE(dictionaryLookup(handle, "a", 1, &data, nullptr));
        EXPECT_TRUE(matches.count == 0 && data == nullptr);
        destroyBin(handle);
    }
    close(descriptor);  // a failed mapping leaves it open
}

void expectError(const char* source, const char* image, const std::string& start) {
    try {
        Dictionary::buildImage(source, image);
        FAIL();
    } catch (const Dictionary::CBuildError& error) {
        EXPECT_EQ(std::string(error.what()).find(start), 0u) << error.what();
    }
}

TEST(Match, TheCppFaceSaysWhatIsWrong) {
    const TemporaryFile source("a\t1\n\U0001F600\t2\n"), image("no image\2\2\2\2");
    try {
        CImage::open(image.path());
        FAIL();
    } catch (const Dictionary::CImageError& error) {
        const std::string message = image.path() + (": header: " + std::string(error.fault().text));
        EXPECT_EQ(error.what(), message + ", cell 0, byte 8");
    }
    expectError("/no/such/file", image.path(), "/no/such/file: cannot-read");
    expectError(source.path(), "/no/such/image", "/no/such/image: cannot-write");
    const TemporaryFile bad("\U0001F600\t2\nnone\n");
    expectError(bad.path(), image.path(), bad.path() + std::string(":2:5: no-field"));
    EXPECT_STRNE(Dictionary::CBuildError({}).what(), "");
    const Dictionary::SBuild build = Dictionary::buildImage(source.path(), image.path());
    EXPECT_EQ(build.result, DICTIONARY_BUILT_WITHOUT_SOME);
    EXPECT_EQ(build.problems.at(0).message().find(source.path() + std::string(":2:1: beyond")), 0u);
    Dictionary::verifyImage(image.path());
    std::vector<int> stages;
    DictionaryBuildOptions options = {};
    options.context = &stages;
    options.onProgress = [](void* context, int stage, std::uint64_t, std::uint64_t) {
        static_cast<std::vector<int>*>(context)->push_back(stage);
        return stage != DICTIONARY_STAGE_PLACE;
    };
    EXPECT_EQ(Dictionary::buildImage(source.path(), image.path(), options).result,
              DICTIONARY_STOPPED);
    EXPECT_EQ(stages, (std::vector<int>{DICTIONARY_STAGE_READ, DICTIONARY_STAGE_PLACE}));
}

}  // namespace
