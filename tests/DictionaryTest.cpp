#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <tuple>

#include "DATDictionarySample.h"
#include "DATInterface.h"
#include "TemporaryFile.h"

namespace {

using Dictionary::CDictionayApp;
using Texts = std::vector<std::string>;
using Data = std::map<std::string, std::string>;
using Handle = std::unique_ptr<void, decltype(&destroyBin)>;

std::string take(char* text) {
    const std::string taken(text);
    freeResult(text);
    return taken;
}

// An image built from a source, and loaded.
struct Image {
    explicit Image(const std::string& text) : source(text), handle(nullptr, destroyBin) {
        printed = printedBy([this] { buildTree(source.path(), file.path()); });
        handle.reset(loadBin(file.path()));
    }

    TemporaryFile source, file;
    Printed printed;
    Handle handle;
};

CDictionayApp& appOf(const Handle& handle) {
    return *static_cast<CDictionayApp*>(handle.get());
}

constexpr int kNothingPlaced = -1;

bool isProgress(const std::string& text, int total) {
    if (total == kNothingPlaced) return text.empty();
    const std::string rest =
        " cost time: [0-9]+\\.[0-9]{6} seconds ALL STATE: " + std::to_string(total) + "\r";
    const std::string lines =
        "(percent :([01]\\.[0-9]{2}|-?nan)" + rest + ")*percent :1\\.00" + rest + "\n";
    return testing::internal::RE::FullMatch(text, lines);
}

// A source, what a build says, the total of its progress lines, the image's size, and the data of
// keys, which is empty for a key that is not there.
using Build = std::tuple<std::string, std::string, int, std::size_t, Data>;
constexpr std::size_t kCell = 12, kTwoDeepCells = 65539 * kCell;
const Build kBuilds[] = {
    Build("", "Build OK\n", kNothingPlaced, kCell, {{"a", ""}}),
    Build("abc\tnoun\t5\nabc\tx\nlost\ty", "noun\t5\t\nnoun\t5\t;x\t\nBuild OK\n", 2,
          kTwoDeepCells + 14, {{"abc", "noun\t5\t;x\t"}, {"ab", ""}, {"lost", ""}}),
    Build("b\t1\na\t2\nb\t3\nb\t4\na\t5\n", "1\t\n2\t\n1\t;3\t\n1\t;3\t;4\t\n2\t;5\t\nBuild OK\n",
          0, ('b' + 1) * kCell + 21, {{"a", "2\t;5\t"}, {"b", "1\t;3\t;4\t"}}),
    Build("\\n\tx\na\\n\ty\n", "x\t\ny\t\nBuild OK\n", 2, kTwoDeepCells + 12,
          {{"\n", "x\t"}, {"\\n", ""}, {"a\\n", "y\t"}, {"a\n", ""}}),
    Build("ab\tx\nnone\nc\tz\n", "x\t\nWrong format of file : none\n", kNothingPlaced, kCell,
          {{"c", ""}}),
    Build("a\U0001F600\tx\nb\t\n", "x\t\n\t\nwrong add a key : a\U0001F600\nBuild OK\n", 0,
          ('b' + 1) * kCell + 5, {{"a", ""}, {"b", "\t"}, {"", ""}})};

TEST(Dictionary, BuildsSaysAndFinds) {
    for (const auto& [source, err, total, size, data] : kBuilds) {
        const Image image(source);
        EXPECT_EQ(image.printed.err, err + "size of dictionary : " + std::to_string(size) + "\n\n");
        EXPECT_TRUE(isProgress(image.printed.out, total)) << image.printed.out;
        EXPECT_EQ(image.file.content().size(), size) << source;
        for (const auto& entry : data) {
            std::string feature = "before";
            const char* const key = entry.first.c_str();
            const auto shown = printedBy([&] { appOf(image.handle).showExactMatch(key, feature); });
            EXPECT_EQ(feature, entry.second) << key;
            EXPECT_EQ(shown.err, "EXACT MATCH" + entry.first + " : " + entry.second + "\n\n");
        }
    }
}

// A source that arrives slowly: what has been read is shown before the rest is there.
TEST(Dictionary, ShowsRecordsAsTheyComeIn) {
    const TemporaryFile file;
    const std::string source = file.path() + std::string(".source");
    ASSERT_EQ(mkfifo(source.c_str(), S_IRUSR | S_IWUSR), 0);
    int lines[2];
    ASSERT_EQ(pipe(lines), 0);
    const pid_t child = fork();
    if (child == 0) {
        dup2(lines[1], STDERR_FILENO);
        dup2(open("/dev/null", O_WRONLY), STDOUT_FILENO);
        buildTree(source.c_str(), file.path());
        _exit(0);
    }
    close(lines[1]);
    std::ofstream records(source);
    for (const std::string data : {"x\t\n", "y\t\n"}) {
        records << "a\t" << data[0] << std::endl;
        constexpr int kPatience = 20000;
        pollfd shown = {lines[0], POLLIN, 0};
        ASSERT_EQ(poll(&shown, 1, kPatience), 1) << data;
        char text[64] = {};
        EXPECT_GT(read(lines[0], text, sizeof text - 1), 0);
        EXPECT_EQ(text, data[0] == 'x' ? data : "x\t;" + data);
    }
    records.close();
    waitpid(child, nullptr, 0);
    close(lines[0]);
    unlink(source.c_str());
}

TEST(Dictionary, BuildsWithOtherSeparatorsAndSaysWhetherItDid) {
    const TemporaryFile source("a\t,x\r\nb\n,y\r\n"), file;
    CDictionayApp app, stopped;
    const Printed built = printedBy([&] {
        EXPECT_EQ(app.buildDic(source.path(), "\\044", "\\013\\010"), 1);
        EXPECT_EQ(app.writeBinaryDic("/no/such/folder/image"), 0);
    });
    EXPECT_EQ(built.err, "x\t\ny\t\nBuild OK\n");
    printedBy([&] {
        EXPECT_EQ(app.writeBinaryDic(file.path()), 1);
        EXPECT_EQ(stopped.buildDic(source.path(), ";", "\n"), 0);
    });
    const Handle handle(loadBin(file.path()), destroyBin);
    EXPECT_EQ(take(search("a\tb\n", handle.get(), true)), "a\t/0:x\t\tb\n/2:y\t\t");
}

void expectNothingIn(CDictionayApp& app) {
    EXPECT_EQ(take(search("text", &app, true)), "");
    CDictionayApp::Matches matches;
    app.allMatch("text", matches);
    EXPECT_TRUE(matches.empty());
    std::string feature = "before";
    printedBy([&] { app.showExactMatch("text", feature); });
    EXPECT_EQ(feature, "");
}

TEST(Dictionary, SaysWhyAnImageIsNotLoaded) {
    const TemporaryFile empty;
    const std::string mapping = std::string("Error Mapping file : ") + empty.path();
    const std::pair<const char*, std::string> cases[] = {
        {"/no/such", "Error open binary dic : /no/such No such file or directory\n\n"},
        {nullptr, "Error open binary dic : \n"},
        {empty.path(), mapping + " Invalid argument\n\n"}};
    for (const auto& [path, message] : cases) {
        CDictionayApp app;
        EXPECT_EQ(printedBy([&, name = path] { app.loadBinaryDic(name); }).err, message);
        expectNothingIn(app);
    }
    EXPECT_EQ(take(search("text", nullptr, true)), "");
    destroyBin(nullptr);
    const auto buildNothing = [&](const char* source, const char* image) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        buildTree(source, image);
    };
    EXPECT_EXIT(buildNothing(nullptr, empty.path()), testing::ExitedWithCode(1),
                "open file failed! The file is: \n");
    printedBy([&] { buildTree(empty.path(), nullptr); });
}

// A file that is shorter than its header says is loaded without a message, but nothing is found in
// it.
TEST(Dictionary, FindsNothingInFilesThatAreTooShort) {
    const Image image("text\tx\n");
    const std::string whole = image.file.content();
    constexpr int kMost = std::numeric_limits<int>::max();
    const int features = static_cast<int>(sizeof "x\t" - 1 + 4);
    const int cells = static_cast<int>(whole.size()) - features;
    // Words of the header, bytes beyond what an undamaged file has, and what is found.
    const std::tuple<int, int, int, const char*> rows[] = {
        {features, cells, 0, "text\t"},
        {features, cells, 1, "text\t"},
        {features, cells, -1, ""},
        {features + 1, cells, 0, ""},
        {features + 1, cells, 1, "text\t"},
        {features, -cells, 0, ""},
        {-1, cells + features + 1, 0, ""},
        {kMost, kMost, 0, ""},
        {features, cells, 11 - cells - features, ""}};
    for (const auto& [featureBytes, cellBytes, more, found] : rows) {
        std::string bytes = whole;
        std::memcpy(&bytes[0], &featureBytes, sizeof featureBytes);
        std::memcpy(&bytes[8], &cellBytes, sizeof cellBytes);
        bytes.resize(whole.size() + static_cast<std::size_t>(more));
        const TemporaryFile file(bytes);
        CDictionayApp app;
        EXPECT_EQ(printedBy([&] { EXPECT_EQ(app.loadBinaryDic(file.path()), 1); }).err, "");
        EXPECT_EQ(take(search("text", &app, false)), found) << featureBytes << ' ' << cellBytes;
        if (*found == '\0') expectNothingIn(app);
    }
}

// What printf would print.
TEST(Dictionary, ShowsProgressWithTheSeparatorOfTheLocale) {
    const std::string folder = testing::TempDir() + "dictionaryLocales";
    const std::string locale = folder + "/de_DE.iso88591";
    std::filesystem::create_directories(folder);
    if (std::system(("localedef -i de_DE -f ISO-8859-1 " + locale).c_str()) != 0) GTEST_SKIP();
    setenv("LOCPATH", folder.c_str(), 1);
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE.iso88591"), nullptr);
    const Image image("ab\tx\n");
    std::setlocale(LC_NUMERIC, "C");
    std::filesystem::remove_all(folder);
    std::string printed = image.printed.out;
    EXPECT_EQ(printed.find('.'), std::string::npos) << printed;
    std::replace(printed.begin(), printed.end(), ',', '.');
    EXPECT_TRUE(isProgress(printed, 1)) << printed;
}

TEST(Dictionary, ShowsMatches) {
    const Image image("a\t1\nab\t2\n中\t3\n");
    const int descriptor = nextDescriptor();
    const Handle handle(loadBin(image.file.path()), destroyBin);
    EXPECT_EQ(nextDescriptor(), descriptor) << "a loaded image's file is closed";
    const CDictionayApp::Matches expected = {{{1, "1\t"}, {2, "2\t"}}, {}, {{3, "3\t"}}, {}, {}};
    CDictionayApp::Matches matches;
    CDictionayApp& app = appOf(handle);
    app.allMatch("ab中", matches);
    EXPECT_EQ(matches, expected);
    const Printed shown = printedBy([&] { app.showAllMatch("ab中", matches); });
    EXPECT_EQ(shown.err, "a : 1\t\nab : 2\t\n中 : 3\t\n");
    EXPECT_EQ(take(search(nullptr, handle.get(), true)), "");
    std::string feature;
    EXPECT_EQ(printedBy([&] { app.showExactMatch(nullptr, feature); }).err, "EXACT MATCH\n");
}

// The longest keys of a legal text, found by trying every key everywhere. A key right before a
// character outside the alphabet is not reported.
std::string longestKeys(const Data& data, const std::string& text, bool withFeatures) {
    std::string result;
    for (std::size_t position = 0; position < text.size(); ++position) {
        std::string entry;
        for (const auto& [key, feature] : data) {
            if (text.compare(position, key.size(), key) != 0) continue;
            if (text[position + key.size()] == '\xF0') continue;
            const std::string place = "/" + std::to_string(position) + ":" + feature;
            entry = key + (withFeatures ? place : "") + "\t";
        }
        result += entry;
    }
    return result;
}

std::string randomText(std::mt19937& random, const Texts& characters, std::size_t count) {
    std::string text;
    while (count-- > 0) text += characters[random() % characters.size()];
    return text;
}

TEST(Dictionary, SearchFindsTheLongestKeys) {
    const Texts letters = {"a", "b", "é", "中", "國"};
    const Texts characters = {"a", "b", "é", "中", "國", "a", "b", "中", "\U0001F600"};
    const Texts ends = {"", "\xFF", "\xE4", "\xED\xA0\x80", "\x80", "\xF0\x9F"};
    std::mt19937 random(7);
    Data data;
    std::string source, lines;
    for (int i = 0; i < 150; ++i) {
        const std::string key = randomText(random, letters, 1 + random() % 5);
        const std::string feature = std::to_string(i % 40);
        source += key + "\t" + feature + "\n";
        data[key] += (data[key].empty() ? "" : ";") + feature + "\t";
        lines += data[key] + "\n";
    }
    const Image image(source);
    EXPECT_EQ(image.printed.err.substr(0, lines.size()), lines);
    void* const handle = image.handle.get();
    for (int i = 0; i < 600; ++i) {
        const std::string legal = randomText(random, characters, random() % (i < 580 ? 20 : 400));
        const std::string& end = ends[random() % ends.size()];
        const std::string text = end.empty() ? legal : legal + end + "ab中";
        CDictionayApp::Matches matches;
        appOf(image.handle).allMatch(text.c_str(), matches);
        for (const bool full : {false, true}) {
            const std::string found = take(search(text.c_str(), handle, full));
            ASSERT_EQ(found, longestKeys(data, legal, full)) << testing::PrintToString(text);
            char* const listed = appOf(image.handle).returnListStr(text.c_str(), matches, full);
            ASSERT_EQ(found, take(listed)) << testing::PrintToString(text);
        }
    }
}

}  // namespace
