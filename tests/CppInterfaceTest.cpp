// Dictionary.hpp: the same answers as Dictionary.h, and its errors as exceptions.

#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <string>
#include <vector>

#include "Dictionary.hpp"
#include "TemporaryFile.h"

namespace {

using namespace dictionary;
using Words = std::map<std::string, std::string>;

Image imageOf(const Words& words) {
    ImageBuffer buffer;
    buildItems(words, buffer);
    return Image::openBytes(buffer.view());
}

TEST(CppInterface, BuildsFromEverySourceAndFindsTheSame) {
    const Words words = {{"a", "1"}, {"ab", "2"}, {"\U0001F600", "face"}};
    const std::string text = "a\t1\nab\t2\n\U0001F600\tface\n";
    const TemporaryFile source(text), image;
    ImageBuffer fromItems, fromBytes, fromFile;
    EXPECT_EQ(buildItems(words, fromItems).report.keys, 3u);
    buildBytes(text, fromBytes);
    buildFile(source.path(), fromFile);
    buildFile(source.path(), image.path());
    for (const auto& bytes : {fromBytes.view(), fromFile.view()})
        EXPECT_EQ(bytes, fromItems.view());
    EXPECT_EQ(image.content(), fromItems.view());
    verifyImage(image.path());
    verifyBytes(fromItems.view());

    const Image open = Image::open(image.path(), OpenMode::share);
    EXPECT_EQ(open.size(), 3u);
    EXPECT_EQ(open.bytes(), fromItems.view());
    EXPECT_EQ(open.lookup("\U0001F600"), "face\t");
    EXPECT_EQ(open.lookup("\xED\xA0\xBD\xED\xB8\x80"), std::nullopt);
    EXPECT_TRUE(open.contains("ab") && !open.contains(""));
    const std::vector<std::string> keys = {"ab", "none", "a"};
    const auto found = open.lookupEach(keys);
    EXPECT_TRUE(found[0] == "2\t" && !found[1].has_value() && found[2] == "1\t");

    std::string listed;
    for (const Key& key : open.keys())
        listed += std::string(key.text) + "=" + std::string(key.data);
    EXPECT_EQ(listed, "a=1\tab=2\t\U0001F600=face\t");
    int withPrefix = 0;
    for (const Key& key : open.keys("ab")) withPrefix += key.text == "ab";
    EXPECT_EQ(withPrefix, 1);
}

TEST(CppInterface, TakesItemsOfManyShapes) {
    const std::vector<std::pair<std::string_view, std::vector<const char*>>> several = {
        {"a", {"1", "2"}}, {"a", {"3"}}};
    struct Item {
        const char* key;
        std::string data;
    };
    const Item structs[] = {{"a", "1"}};
    ImageBuffer image;
    buildItems(several, image);
    const Image open = Image::openBytes(image.view(), OpenMode::borrow);
    const auto records = recordsOf(open.lookup("a").value());
    EXPECT_EQ(records, (std::vector<std::vector<std::string_view>>{{"1", "2"}, {"3"}}));
    EXPECT_EQ(buildItems(structs, image).report.records, 1u);
    EXPECT_EQ(Image::openBytes(image.view()).lookup("a"), "1\t");
    EXPECT_THROW(buildItems(Words(), image), BuildError);
    EXPECT_TRUE(image.view().empty());
    EXPECT_EQ(checkItems(Words{{"a", "1"}, {"b\t", "2"}}).problems.at(0).record().line, 2u);
}

// Two values that are made when they are asked for.
template <class Make>
struct MadePair {
    struct Iterator {
        Make make;
        int number;
        bool operator!=(const Iterator& other) const { return number != other.number; }
        Iterator& operator++() {
            ++number;
            return *this;
        }
        auto operator*() const { return make(number); }
    };
    Make make;
    Iterator begin() const { return {make, 0}; }
    Iterator end() const { return {make, 2}; }
};

template <class Make>
MadePair<Make> madePair(Make make) {
    return {make};
}

TEST(CppInterface, ItemsThatFailMakeNoImage) {
    const auto failing = madePair([](int number) {
        if (number == 1) throw 1;
        return std::pair<std::string, std::string>("a", "1");
    });
    const TemporaryFile image("old");
    EXPECT_THROW(buildItems(failing, image.path()), int);
    EXPECT_EQ(image.content(), "old");
    EXPECT_THROW(checkItems(failing), int);
}

TEST(CppInterface, TakesTextsThatAreMadeOnDemand) {
    const std::string keys[] = {std::string(40, 'a'), std::string(40, 'b')};
    const Image image = imageOf({{keys[0], "1"}, {keys[1], "2"}});
    const auto made = madePair([&](int number) { return keys[number]; });
    const auto found = image.lookupEach(made);
    EXPECT_TRUE(found[0] == "1\t" && found[1] == "2\t");
    EXPECT_EQ(image.findEach(made)[0][0].data, "1\t");
    EXPECT_EQ(image.findColumns(made).size(), 2u);
    const std::vector<std::pair<std::string, decltype(made)>> items = {{"x", made}};
    ImageBuffer built;
    buildItems(items, built);
    EXPECT_EQ(Image::openBytes(built.view()).lookup("x"), keys[0] + '\t' + keys[1] + '\t');
}

TEST(CppInterface, FindsInEveryWay) {
    const Image image = imageOf({{"a", "1"}, {"ab", "2"}, {"\U0001F600", "3"}});
    const std::string text = "\U0001F600xab";
    std::string all;
    for (const Match& match : image.find(text, {FindMode::all, Unit::utf16})) {
        all += std::to_string(match.start) + "+" + std::to_string(match.length) + " ";
    }
    EXPECT_EQ(all, "0+2 3+1 3+2 ");
    EXPECT_EQ(image.find(text, FindMode::longest).size(), 2u);
    const auto each = image.findEach(std::vector<const char*>{"a", "", "ab"});
    EXPECT_TRUE(each[0].size() == 1 && each[1].empty() && each[2].size() == 2);
    EXPECT_TRUE(image.containsKey(text) && !image.containsKey("x"));

    int seen = 0;
    EXPECT_TRUE(image.visit(text, {}, [&](const Match&) { ++seen; }));
    EXPECT_EQ(seen, 3);
    EXPECT_FALSE(image.visit(text, {}, [&](const Match&) { return ++seen < 5; }));
    EXPECT_EQ(seen, 5);
    EXPECT_THROW(image.visit(text, {}, [](const Match&) -> bool { throw 1; }), int);
    Image moved = imageOf({{"b", ""}});
    moved = Image::set({&image});
    EXPECT_EQ(moved.describe().images, 1u);
}

TEST(CppInterface, SegmentsByWeightAndReplaces) {
    const Image image = imageOf({{"ab", "100"}, {"abc", "1"}, {"cd", "100"}, {"d", "1"}});
    const Segmenter segmenter(image);
    FindOptions options = FindMode::weighted;
    options.segmenter = &segmenter;
    options.unknownPieces = true;
    std::string pieces;
    const std::string text = "abcdx";
    for (const Match& match : image.find(text, options)) {
        pieces += text.substr(match.start, match.length) + (match.isKey ? "+" : "-");
    }
    EXPECT_EQ(pieces, "ab+cd+x-");
    options.unknownPieces = false;
    EXPECT_EQ(image.replace(text, {}, options), "100100x");
    EXPECT_EQ(image.replace(text), "11x");
    const Image noNumbers = imageOf({{"a", "x"}});
    EXPECT_THROW(Segmenter{noNumbers}, Error);
}

TEST(CppInterface, ErrorsCarryTheirRecords) {
    const TemporaryFile noImage("no image\2\2\2\2");
    const auto errorOf = [](const auto& action) {
        try {
            action();
        } catch (const Error& error) {
            return error;
        }
        throw std::logic_error("no error");
    };
    const Error bad = errorOf([&] { Image::open(std::string(noImage.path())); });
    EXPECT_EQ(bad.code(), DICTIONARY_IMAGE_HEADER);
    EXPECT_STREQ(bad.record().path, noImage.path());
    EXPECT_EQ(bad.what(), noImage.path() + (": header: " + std::string(bad.record().text)) +
                              ", cell 0, byte 8");
    const Error missing = errorOf([] { verifyImage("/no/such/file"); });
    EXPECT_EQ(missing.record().systemError, ENOENT);
    EXPECT_STREQ(missing.what(),
                 "/no/such/file: cannot-read: the file cannot be read: No such file or directory");

    const std::string source = "a\t1\r\nnone\n";
    ImageBuffer image;
    try {
        BuildOptions lenient;
        lenient.lenient = true;
        buildBytes(source, image, lenient);
        FAIL();
    } catch (const BuildError& error) {
        EXPECT_EQ(error.code(), DICTIONARY_NO_FIELD);
        EXPECT_EQ(error.record().line, 2u);
        EXPECT_EQ(error.report().problems, 2u);
        EXPECT_TRUE(error.problems().at(0).isWarning());
    }
    const Built checked = checkBytes(source);
    EXPECT_EQ(checked.problems.size(), 2u);
    EXPECT_TRUE(checked.hasErrors());
    EXPECT_TRUE(checkBytes("a\t1\n").problems.empty());

    BuildOptions options;
    options.onProgress = [](Stage stage, std::uint64_t, std::uint64_t) {
        return stage != Stage::place;
    };
    EXPECT_EQ(errorOf([&] { buildBytes("a\t1\n", image, options); }).code(), DICTIONARY_STOPPED);
    options.onProgress = [](Stage, std::uint64_t, std::uint64_t) -> bool { throw 1; };
    EXPECT_THROW(buildBytes("a\t1\n", image, options), int);
}

}  // namespace
