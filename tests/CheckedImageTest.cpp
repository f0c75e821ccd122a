// The verification of images: what builds make is accepted, what is accepted is safe, and what is
// wrong is named.

#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <cstring>

#include "BoundaryText.h"
#include "DATChecked.h"
#include "DATDictionarySample.h"
#include "DATInterface.h"
#include "DATReader.h"
#include "DATWriter.h"
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

DictionaryImageFault check(const std::string& image) {
    return Dictionary::checkImage(image.data(), image.size(), LetterCoder().getNumOfSingleWord());
}

const Keys kKeySets[] = {
    {},
    {{"A", ""}},
    {{"A", "1"}, {"AB", "22"}, {"ABC", "1"}, {"B", "333"}, {"BA", ""}},
    {{"CAT", "animal"}, {"CUT", "verb"}, {"CUTE", "verb"}, {"ABACAD", "x"}, {"\x7F\x7F", "y"}},
};

// Counts images that are accepted, over which no lookup may reach the page behind them.
int tryOut(const std::string& image) {
    if (check(image).code != DICTIONARY_IMAGE_OK) return 0;
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
            EXPECT_NE(check(image.substr(0, i)).code, DICTIONARY_IMAGE_OK) << i;
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

// Words are counted from the image's start, three a cell.
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
    // Cells 1, 65 and 66 in use, of 67; records at bytes 0 and 5 of 11.
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
        {{{word(66, 2), -1}}, DICTIONARY_IMAGE_OK, -1, -1},
    };
    for (const Wrong& row : rows) {
        std::string wrong = image;
        for (const auto& [at, value] : row.changes) std::memcpy(&wrong[4 * at], &value, 4);
        const DictionaryImageFault fault = check(wrong);
        EXPECT_TRUE(row.code == fault.code && row.cell == fault.cell && row.offset == fault.offset)
            << "word " << row.changes[0].first << " = " << row.changes[0].second << ": "
            << fault.text << ", code " << fault.code << ", byte " << fault.offset;
    }
}

TEST(CheckedOpen, GivesHandlesToSearch) {
    const std::pair<const char*, const char*> rows[] = {
        {"ab\t1\nb\t2\n", "ab/1:1\t\tb/2:2\t\t"}, {"", ""}, {"no field\n", ""}};
    for (const auto& [records, expected] : rows) {
        const TemporaryFile source(records), image;
        printedBy([&] { buildTree(source.path(), image.path()); });
        const int descriptor = nextDescriptor();
        for (const int mode : {DICTIONARY_OPEN_MAP, DICTIONARY_OPEN_COPY}) {
            DictionaryImageFault fault;
            void* const handle = dictionaryOpen(image.path(), mode, &fault);
            ASSERT_NE(handle, nullptr) << fault.text;
            EXPECT_EQ(fault.code, DICTIONARY_IMAGE_OK);
            EXPECT_EQ(fault.systemError, 0);
            // A copy stands, whatever becomes of the file.
            if (mode == DICTIONARY_OPEN_COPY) std::ofstream(image.path(), std::ios::trunc);
            char* const result = search("xab", handle, true);
            EXPECT_STREQ(result, expected);
            freeResult(result);
            destroyBin(handle);
        }
        EXPECT_EQ(nextDescriptor(), descriptor);
    }
}

TEST(CheckedOpen, SaysWhyItCannotOpen) {
    const TemporaryFile empty, headless("short"), huge, pipe;
    ASSERT_EQ(truncate(huge.path(), std::int64_t{1} << 31), 0);
    unlink(pipe.path());
    ASSERT_EQ(mkfifo(pipe.path(), 0600), 0);
    const std::tuple<const char*, int, int, int> rows[] = {
        {"/no/such/file", DICTIONARY_OPEN_MAP, DICTIONARY_IMAGE_UNREADABLE, ENOENT},
        {nullptr, DICTIONARY_OPEN_MAP, DICTIONARY_IMAGE_UNREADABLE, ENOENT},
        {"/", DICTIONARY_OPEN_COPY, DICTIONARY_IMAGE_UNREADABLE, EISDIR},
        {pipe.path(), DICTIONARY_OPEN_COPY, DICTIONARY_IMAGE_UNREADABLE, EINVAL},
        {empty.path(), 2, DICTIONARY_IMAGE_UNREADABLE, EINVAL},
        {empty.path(), DICTIONARY_OPEN_MAP, DICTIONARY_IMAGE_TOO_SHORT, 0},
        {headless.path(), DICTIONARY_OPEN_COPY, DICTIONARY_IMAGE_TOO_SHORT, 0},
        {huge.path(), DICTIONARY_OPEN_MAP, DICTIONARY_IMAGE_TOO_LARGE, 0},
    };
    for (const auto& [name, mode, code, systemError] : rows) {
        DictionaryImageFault fault;
        EXPECT_EQ(dictionaryOpen(name, mode, &fault), nullptr);
        EXPECT_EQ(fault.code, code) << fault.text;
        EXPECT_EQ(fault.systemError, systemError);
    }
    for (const int code : {INT_MIN, -1, 100, INT_MAX}) {
        EXPECT_STREQ(dictionaryFaultName(code), "unknown");
        EXPECT_STREQ(dictionaryProblemName(code), "unknown");
    }
}

}  // namespace
