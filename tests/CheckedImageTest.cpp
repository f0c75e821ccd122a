// The verification of images: what builds make is accepted, what is accepted is safe, and faults
// are named.

#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <random>
#include <thread>
#include <tuple>

#include "BoundaryText.h"
#include "DATDictionarySample.h"
#include "DATInterface.h"
#include "DATReader.h"
#include "DATWriter.h"
#include "Dictionary.h"
#include "EachKernel.h"
#include "ImageCheck.h"
#include "LetterCoder.h"
#include "TemporaryFile.h"

namespace {

using Keys = std::vector<std::pair<const char*, const char*>>;

std::string imageOf(const Keys& keys, bool reverse = false, int builds = 1, int writes = 1) {
    LetterCoder coder;
    Dictionary::CDATWriter writer(&coder, reverse);
    std::unique_ptr<char[]> image;
    printedBy([&] {
        for (; builds > 0; --builds) {
            for (const auto& [key, data] : keys) writer.addKeys(key, data);
            writer.buildDAT();
        }
        for (; writes > 0; --writes) image.reset(writer.write());
    });
    return {image.get(), static_cast<std::size_t>(writer.imageSize())};
}

Dictionary::ImageFault check(const std::string& image) {
    return Dictionary::checkImage(image.data(), image.size(), LetterCoder().getNumOfSingleWord());
}

const Keys kKeySets[] = {
    {},
    {{"A", ""}},
    {{"A", "1"}, {"AB", "22"}, {"ABC", "1"}, {"B", "333"}, {"BA", ""}},
    {{"CAT", "animal"}, {"CUT", "verb"}, {"CUTE", "verb"}, {"ABACAD", "x"}, {"\x7F\x7F", "y"}},
};

// Returns 1 if an image is accepted, otherwise 0. In an accepted image no lookup may reach the page
// after it.
int tryOut(const std::string& image) {
    if (check(image).code != DICTIONARY_OK) return 0;
    LetterCoder coder;
    const GuardedBytes guarded(image);
    Dictionary::CDATReader reader(&coder, guarded.data(), false);
    for (const char* text : {"A", "AB", "ABCABACAD", "BABABA", "CATCUTE", "ZZ\x7F\x7F", "CUT"}) {
        std::string feature;
        std::vector<Dictionary::SPOS> records;
        Dictionary::CDictionayApp::Matches groups;
        reader.exactMatch(text, feature);
        reader.maxMatch(text, records);
        reader.allMatch(text, groups, false, -1);
    }
    return 1;
}

TEST(CheckedImage, AcceptsWhatWritersMakeAndElseOnlyWhatIsSafe) {
    int accepted = 0;
    for (const Keys& keys : kKeySets) {
        const std::string image = imageOf(keys);
        EXPECT_EQ(tryOut(image) + tryOut(imageOf(keys, true)) + tryOut(imageOf(keys, false, 2, 2)),
                  3);
        for (std::size_t i = 0; i < image.size(); ++i) {
            EXPECT_NE(check(image.substr(0, i)).code, DICTIONARY_OK) << i;
            std::string changed = image;
            for (int bit = 0; bit < 8; ++bit) {
                changed[i] = static_cast<char>(image[i] ^ (1 << bit));
                accepted += tryOut(changed);
            }
            for (const char byte : {'\x00', '\x01', '\x7F', '\x80', '\xFF'}) {
                changed[i] = byte;
                accepted += tryOut(changed);
            }
        }
    }
    EXPECT_GT(accepted, 0);  // the numbers of keys and their data may be anything
}

// Words are counted from the image's start, three per cell.
constexpr std::size_t word(std::size_t cell, std::size_t word) {
    return 3 * cell + word;
}

struct Wrong {
    std::vector<std::pair<std::size_t, std::int32_t>> changes;
    int code;
    std::int64_t cell;
    std::int64_t offset;
};

TEST(CheckedImage, NamesWhatIsWrong) {
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    // Of 67 cells, 1, 65 and 66 are in use. Records begin at bytes 0 and 5 of 11.
    const std::string image = imageOf({{"A", "1"}, {"AB", "22"}, {"ABC", "1"}});
    const Wrong rows[] = {
        {{{word(0, 2), 803}}, DICTIONARY_IMAGE_HEADER, 0, 8},
        {{{word(0, 2), 0}}, DICTIONARY_IMAGE_HEADER, 0, 8},
        {{{word(0, 2), 792}}, DICTIONARY_IMAGE_HEADER, 0, 0},
        {{{word(0, 0), -1}, {word(0, 2), 816}}, DICTIONARY_IMAGE_HEADER, 0, 0},
        {{{word(0, 1), -1}}, DICTIONARY_IMAGE_HEADER, 0, 4},
        {{{word(67, 0), 8}}, DICTIONARY_IMAGE_AREA, -1, 804},
        {{{word(67, 0), -1}}, DICTIONARY_IMAGE_AREA, -1, 804},
        {{{word(67, 0), 5}}, DICTIONARY_IMAGE_AREA, -1, 813},
        {{{word(67, 0), 7}}, DICTIONARY_IMAGE_FEATURE, 65, 788},
        {{{word(2, 0), 5}}, DICTIONARY_IMAGE_FREE_CELL, 2, 24},
        {{{word(2, 2), 0}}, DICTIONARY_IMAGE_FREE_CELL, 2, 32},
        {{{word(2, 0), -1}, {word(2, 1), 1}}, DICTIONARY_IMAGE_PARENT, 2, 28},
        {{{word(64, 0), -1}, {word(64, 1), -1}}, DICTIONARY_IMAGE_PARENT, 64, 772},
        {{{word(65, 1), -1}}, DICTIONARY_IMAGE_PARENT, 65, 784},
        {{{word(65, 1), -2}}, DICTIONARY_IMAGE_PARENT, 65, 784},
        {{{word(65, 1), 67}}, DICTIONARY_IMAGE_PARENT, 65, 784},
        {{{word(65, 1), 2}}, DICTIONARY_IMAGE_PARENT, 65, 784},
        {{{word(66, 1), 66}}, DICTIONARY_IMAGE_PARENT, 66, 796},
        {{{word(65, 1), 66}}, DICTIONARY_IMAGE_PARENT, 65, 784},
        {{{word(1, 0), -65}}, DICTIONARY_IMAGE_LABEL, 65, 784},
        {{{word(1, 0), -1}}, DICTIONARY_IMAGE_LABEL, 65, 784},
        {{{word(1, 0), 0}}, DICTIONARY_IMAGE_BASE, 1, 12},
        {{{word(66, 0), kLeast}}, DICTIONARY_IMAGE_BASE, 66, 792},
        {{{word(66, 0), 67}}, DICTIONARY_IMAGE_BASE, 66, 792},
        {{{word(66, 0), 3}}, DICTIONARY_IMAGE_FEATURE, 66, 800},
        {{{word(66, 2), 4}}, DICTIONARY_IMAGE_FEATURE, 66, 800},
        {{{word(66, 2), 11}}, DICTIONARY_IMAGE_FEATURE, 66, 800},
        {{{word(66, 2), -2}}, DICTIONARY_IMAGE_FEATURE, 66, 800},
        {{{word(66, 2), -1}}, DICTIONARY_OK, -1, -1},
    };
    for (const Wrong& row : rows) {
        std::string wrong = image;
        for (const auto& [at, value] : row.changes) std::memcpy(&wrong[4 * at], &value, 4);
        const Dictionary::ImageFault fault = check(wrong);
        EXPECT_TRUE(row.code == fault.code && row.cell == fault.cell && row.offset == fault.offset)
            << "word " << row.changes[0].first << " = " << row.changes[0].second << ": "
            << fault.text << ", code " << fault.code << ", byte " << fault.offset;
    }
}

// Checks an image with every kernel. All must find the same fault.
Dictionary::ImageFault checkByAll(const std::string& image) {
    const Dictionary::ImageFault fault = check(image);
    forEachKernel([&] {
        const Dictionary::ImageFault other = check(image);
        EXPECT_TRUE(other.code == fault.code && other.offset == fault.offset)
            << other.text << " at " << other.offset << ", not " << fault.text << " at "
            << fault.offset;
    });
    return fault;
}

TEST(CheckedImage, EachKernelNamesTheSameFault) {
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr std::size_t kFirst = 65;  // first cell after those of first characters
    std::mt19937 random(7);
    std::vector<std::string> texts(150);
    for (std::string& text : texts) {
        for (std::size_t left = 1 + random() % 6; left > 0; --left)
            text += "ABCDEFGH"[random() % 8];
    }
    Keys keys;
    for (const std::string& text : texts) keys.emplace_back(text.c_str(), text.c_str());
    const std::string image = imageOf(keys);
    const auto at = [](std::string& bytes, std::size_t place) {
        return reinterpret_cast<std::int32_t*>(bytes.data()) + place;
    };
    std::string changed = image;
    const auto cells = static_cast<std::size_t>(*at(changed, 2)) / 12;
    ASSERT_GT(cells, kFirst + 200);
    EXPECT_EQ(checkByAll(image).code, DICTIONARY_OK);
    for (std::size_t place = word(kFirst, 0); place < word(cells, 0); ++place) {
        const std::int32_t before = *at(changed, place);
        const auto other = static_cast<std::int32_t>(random() % cells);
        for (const std::int32_t value : {0, 1, -1, -2, before + 1, before - 1, -before, other,
                                         static_cast<std::int32_t>(cells), kLeast}) {
            *at(changed, place) = value;
            checkByAll(changed);
        }
        *at(changed, place) = before;
    }
    // Makes each cell the parent of its own parent.
    for (std::size_t cell = kFirst; cell < cells; ++cell) {
        const auto parent = static_cast<std::size_t>(*at(changed, word(cell, 1)));
        if (parent < kFirst || parent >= cells) continue;
        std::string cycle = image;
        *at(cycle, word(parent, 1)) = static_cast<std::int32_t>(cell);
        *at(cycle, word(cell, 0)) = 1 - static_cast<std::int32_t>(parent);
        EXPECT_NE(checkByAll(cycle).code, DICTIONARY_OK) << cell;
    }
}

// H and L are the surrogates of a character.
class SurrogateCoder : public Dictionary::CUTF8Coder {
public:
    int encodeString(const char* text, std::vector<int>& codes,
                     std::vector<Dictionary::SPOS>& positions, int length) override {
        CUTF8Coder::encodeString(text, codes, positions, length);
        std::replace(codes.begin(), codes.end(), int{'H'}, 0xD83D);
        std::replace(codes.begin(), codes.end(), int{'L'}, 0xDE00);
        return 1;
    }
};

TEST(CheckedImage, RefusesHalvesOfCharacters) {
    const std::pair<std::vector<std::string>, int> rows[] = {
        {{"HL", "aHL", "HLHL", "HLa", "a"}, DICTIONARY_OK},
        {{"H"}, DICTIONARY_IMAGE_LABEL},
        {{"HL", "H"}, DICTIONARY_IMAGE_LABEL},
        {{"L"}, DICTIONARY_IMAGE_LABEL},
        {{"aL", "a"}, DICTIONARY_IMAGE_LABEL},
        {{"Ha"}, DICTIONARY_IMAGE_LABEL},
        {{"HHL"}, DICTIONARY_IMAGE_LABEL},
        {{"HLL", "HL"}, DICTIONARY_IMAGE_LABEL},
        {{"aHb", "aHL"}, DICTIONARY_IMAGE_LABEL},
    };
    for (const auto& [keys, code] : rows) {
        SurrogateCoder coder;
        Dictionary::CDATWriter writer(&coder, false);
        std::unique_ptr<char[]> image;
        printedBy([&, all = &keys] {
            for (const std::string& key : *all) writer.addKeys(key.c_str(), "x");
            for (char c = 'b'; c <= 'z'; ++c) writer.addKeys(std::string({'b', c}).c_str(), "x");
            writer.buildDAT();
            image.reset(writer.write());
        });
        const auto size = static_cast<std::size_t>(writer.imageSize());
        EXPECT_EQ(dictionaryVerifyBytes({image.get(), size}, nullptr), code) << keys.front();
    }
}

TEST(CheckedOpen, GivesHandlesToSearch) {
    const std::pair<const char*, const char*> rows[] = {
        {"ab\t1\nb\t2\n", "ab/1:1\t\tb/2:2\t\t"}, {"", ""}, {"no field\n", ""}};
    for (const auto& [records, expected] : rows) {
        const TemporaryFile source(records), image;
        printedBy([&] { buildTree(source.path(), image.path()); });
        const std::string bytes = image.content();
        const int descriptor = nextDescriptor();
        const auto expectFound = [expected = expected](DictionaryHandle* handle) {
            ASSERT_NE(handle, nullptr);
            char* const result = search("xab", handle, true);
            EXPECT_STREQ(result, expected);
            freeResult(result);
            destroyBin(handle);
        };
        DictionaryError error;
        for (const int mode : {DICTIONARY_OPEN_MAP, DICTIONARY_OPEN_SHARE, DICTIONARY_OPEN_COPY}) {
            DictionaryHandle* const handle = dictionaryOpenFile(image.path(), mode, &error);
            EXPECT_EQ(error.code, DICTIONARY_OK) << error.text;
            // A copy stays, whatever happens to the file.
            if (mode == DICTIONARY_OPEN_COPY) std::ofstream(image.path(), std::ios::trunc);
            expectFound(handle);
        }
        for (const int mode : {DICTIONARY_OPEN_COPY, DICTIONARY_OPEN_BORROW}) {
            std::string own = bytes;
            DictionaryHandle* const handle =
                dictionaryOpenBytes({own.data(), own.size()}, mode, &error);
            if (mode == DICTIONARY_OPEN_COPY) own.assign(own.size(), 'x');
            expectFound(handle);
        }
        EXPECT_EQ(nextDescriptor(), descriptor);
    }
}

TEST(CheckedOpen, SharesAnUnchangedFileAlsoWithThreadsAndChildren) {
    const TemporaryFile source("a\t1\n"), other("b\t2\n"), image;
    const auto build = [&](const TemporaryFile& from) {
        printedBy([&] { buildTree(from.path(), image.path()); });
    };
    const auto open = [&] {
        return dictionaryOpenFile(image.path(), DICTIONARY_OPEN_SHARE, nullptr);
    };
    const auto bytesOf = [](const DictionaryHandle* handle) {
        return dictionaryImageBytes(handle, 0).bytes;
    };
    build(source);
    DictionaryHandle* const first = open();
    std::atomic<int> strangers{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round) {
                DictionaryHandle* const handle = open();
                if (bytesOf(handle) != bytesOf(first)) ++strangers;
                dictionaryClose(handle);
            }
        });
    }
    for (int round = 0; round < 20; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            DictionaryHandle* const handle = open();
            _exit(bytesOf(handle) == bytesOf(first) ? 0 : 1);
        }
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(strangers, 0);
    unlink(image.path());
    build(other);
    DictionaryHandle* const second = open();
    EXPECT_NE(bytesOf(second), bytesOf(first));
    EXPECT_TRUE(dictionaryLookupKey(second, {"b", 1}, nullptr));
    dictionaryClose(first);
    dictionaryClose(second);
    dictionaryClose(nullptr);
}

TEST(CheckedOpen, SaysWhyItCannotOpen) {
    const TemporaryFile empty, headless("short"), huge, pipe;
    ASSERT_EQ(truncate(huge.path(), std::int64_t{1} << 31), 0);
    unlink(pipe.path());
    ASSERT_EQ(mkfifo(pipe.path(), 0600), 0);
    const std::tuple<const char*, int, int, int> rows[] = {
        {"/no/such/file", DICTIONARY_OPEN_MAP, DICTIONARY_CANNOT_READ, ENOENT},
        {"/", DICTIONARY_OPEN_COPY, DICTIONARY_CANNOT_READ, EISDIR},
        {pipe.path(), DICTIONARY_OPEN_SHARE, DICTIONARY_CANNOT_READ, EINVAL},
        {nullptr, DICTIONARY_OPEN_MAP, DICTIONARY_BAD_ARGUMENT, 0},
        {empty.path(), DICTIONARY_OPEN_BORROW, DICTIONARY_BAD_ARGUMENT, 0},
        {empty.path(), DICTIONARY_OPEN_MAP, DICTIONARY_IMAGE_TOO_SHORT, 0},
        {headless.path(), DICTIONARY_OPEN_COPY, DICTIONARY_IMAGE_TOO_SHORT, 0},
        {huge.path(), DICTIONARY_OPEN_MAP, DICTIONARY_IMAGE_TOO_LARGE, 0},
    };
    for (const auto& [name, mode, code, systemError] : rows) {
        DictionaryError error;
        EXPECT_EQ(dictionaryOpenFile(name, mode, &error), nullptr);
        EXPECT_EQ(error.code, code) << error.text;
        EXPECT_EQ(error.systemError, systemError);
        EXPECT_EQ(error.path, code == DICTIONARY_BAD_ARGUMENT ? nullptr : name);
        if (mode != DICTIONARY_OPEN_BORROW && name != nullptr) {
            EXPECT_EQ(dictionaryVerifyImage(name, nullptr), code);
        }
    }
    DictionaryError error;
    for (const DictionaryText& bytes : {DictionaryText{nullptr, 20}, {"", 0}, {"short", 5}}) {
        EXPECT_EQ(dictionaryOpenBytes(bytes, DICTIONARY_OPEN_COPY, &error), nullptr);
        EXPECT_NE(error.code, DICTIONARY_OK);
        EXPECT_NE(dictionaryVerifyBytes(bytes, &error), DICTIONARY_OK);
    }
}

TEST(CheckedOpen, SetsAreMadeOfImages) {
    const std::string image = imageOf({});
    DictionaryHandle* const one =
        dictionaryOpenBytes({image.data(), image.size()}, DICTIONARY_OPEN_BORROW, nullptr);
    const std::vector<const DictionaryHandle*> many(65, one), none(1, nullptr);
    DictionaryHandle* const set = dictionaryOpenSet(many.data(), 64, nullptr);
    ASSERT_NE(set, nullptr);
    DictionaryDescription description = {};
    DictionaryError error;
    EXPECT_EQ(dictionaryDescribe(set, &description, &error), DICTIONARY_BAD_ARGUMENT);
    description.size = sizeof description;
    EXPECT_EQ(dictionaryDescribe(set, &description, &error), DICTIONARY_OK);
    EXPECT_EQ(description.images, 64u);
    EXPECT_EQ(description.imageBytes, 64 * image.size());
    const std::vector<const DictionaryHandle*> sets(1, set);
    EXPECT_EQ(dictionaryOpenSet(many.data(), 65, nullptr), nullptr);
    EXPECT_EQ(dictionaryOpenSet(many.data(), 0, nullptr), nullptr);
    EXPECT_EQ(dictionaryOpenSet(none.data(), 1, nullptr), nullptr);
    EXPECT_EQ(dictionaryOpenSet(sets.data(), 1, &error), nullptr);
    EXPECT_EQ(error.code, DICTIONARY_BAD_ARGUMENT);
    char* const result = search("text", set, true);
    EXPECT_STREQ(result, "");
    freeResult(result);
    dictionaryClose(set);
    dictionaryClose(one);
}

TEST(CheckedError, IsOneLine) {
    DictionaryError error = {};
    error.code = DICTIONARY_NO_FIELD;
    error.cell = error.offset = -1;
    error.path = "a\n\xFF\u00E9";
    error.line = 3;
    std::strcpy(error.text, "text\t");
    std::vector<std::string> lines = {"a\\x0A\\xFF\u00E9:3: no-field: text\\x09"};
    const auto message = [&](std::size_t size) {
        std::string line(size + 1, '#');
        EXPECT_EQ(dictionaryErrorMessage(&error, line.data(), size), lines.back().size());
        EXPECT_EQ(line.back(), '#') << "nothing is written after the buffer";
        return size == 0 ? "" : std::string(line.c_str());
    };
    EXPECT_EQ(message(100), lines.back());
    // Cut off, but not in the middle of a character.
    for (std::size_t size = 0; size < 20; ++size) {
        const std::size_t length = size == 11 ? 9 : size - (size > 0);
        EXPECT_EQ(message(size), lines.back().substr(0, length)) << size;
    }
    error = {DICTIONARY_IMAGE_BASE, 0, EIO, 0, nullptr, 0, 0, 7, 84, "base"};
    lines.push_back("base: base: Input/output error, cell 7, byte 84");
    EXPECT_EQ(message(100), lines.back());
    EXPECT_EQ(dictionaryErrorMessage(nullptr, nullptr, 0), 0u);
    for (const int code : {INT_MIN, -1, 100, INT_MAX}) {
        EXPECT_STREQ(dictionaryCodeName(code), "unknown");
    }
}

}  // namespace
