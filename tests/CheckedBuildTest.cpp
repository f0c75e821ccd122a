#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <thread>
#include <tuple>

#include "DATDictionarySample.h"
#include "DATInterface.h"
#include "Descriptor.h"
#include "Dictionary.h"
#include "TemporaryFile.h"

namespace {

namespace fs = std::filesystem;

constexpr char kGood[] = "a\tx\nab\ty\nac\tz\nb\tw\n", kOther[] = "c\tother\ncd\tdata\n";
constexpr int kNotBuilt = -1;
constexpr char kNoImage[] = "no image";  // for a source that is only checked

// A build with its progress and its problems, each as "LINE:COLUMN SEVERITY NAME". Builds return
// DICTIONARY_OK, DICTIONARY_STOPPED or kNotBuilt.
struct Build {
    explicit Build(bool lenient = false) {
        options.size = sizeof options;
        options.lenient = lenient;
        options.context = this;
        options.onProblem = [](void* build, const DictionaryError* problem) {
            static_cast<Build*>(build)->note(*problem);
        };
        options.onProgress = [](void* build, int stage, std::uint64_t done, std::uint64_t total) {
            static_cast<Build*>(build)->steps.emplace_back(stage, done, total);
            return static_cast<Build*>(build)->onStep();
        };
        report.size = sizeof report;
    }
    Build(const Build&) = delete;

    void note(const DictionaryError& problem) {
        problems << problem.line << ':' << problem.column << ' ' << "EW"[problem.severity] << ' '
                 << dictionaryCodeName(problem.code) << '\n';
        error = problem.systemError;
        if (problem.severity == DICTIONARY_ERROR && first.code == DICTIONARY_OK) first = problem;
    }
    int file(const std::string& source, const char* image) {
        from.path = source.c_str();
        to.path = image;
        return run();
    }
    int bytes(const std::string& source, const std::string& image) {
        from.bytes = {source.data(), source.size()};
        to.path = image == kNoImage ? nullptr : image.c_str();
        return run();
    }
    // Builds into `made`.
    int bytesOut(const std::string& source) {
        from.bytes = {source.data(), source.size()};
        DictionaryImageBuffer buffer = {};
        to.buffer = &buffer;
        const int result = run();
        made.assign(buffer.bytes == nullptr ? "" : buffer.bytes, buffer.size);
        dictionaryFreeBuffer(&buffer);
        return result;
    }
    int items(std::vector<std::vector<std::string>> all) {
        given = std::move(all);
        from.context = this;
        from.nextItem = [](void* build, const DictionaryText** fields, std::size_t* count) {
            return static_cast<Build*>(build)->giveItem(fields, count);
        };
        from.bytes = {nullptr, 0};
        DictionaryImageBuffer buffer = {};
        to.buffer = &buffer;
        const int result = run();
        made.assign(buffer.bytes == nullptr ? "" : buffer.bytes, buffer.size);
        dictionaryFreeBuffer(&buffer);
        return result;
    }

    bool giveItem(const DictionaryText** fields, std::size_t* count) {
        if (next == given.size()) return false;
        texts.clear();
        for (const std::string& field : given[next++])
            texts.push_back({field.data(), field.size()});
        *fields = texts.data();
        *count = texts.size();
        return true;
    }
    int run() {
        from.size = sizeof from;
        to.size = sizeof to;
        DictionaryError ended;
        const int code = dictionaryBuildFrom(&from, &to, &options, &report, &ended);
        EXPECT_EQ(ended.code, code);
        if (code == DICTIONARY_OK || code == DICTIONARY_STOPPED) return code;
        EXPECT_EQ(code, first.code) << ended.text;
        EXPECT_EQ(std::memcmp(&ended, &first, sizeof first), 0) << "the first error is returned";
        return kNotBuilt;
    }

    DictionarySource from = {};
    DictionaryTarget to = {};
    DictionaryBuildOptions options = {};
    DictionaryBuildReport report = {};
    std::ostringstream problems;
    DictionaryError first = {};
    std::string made;
    int error = 0;
    std::vector<std::tuple<int, std::uint64_t, std::uint64_t>> steps;
    std::function<bool()> onStep = [] { return true; };
    std::vector<std::vector<std::string>> given;
    std::vector<DictionaryText> texts;
    std::size_t next = 0;
};

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A new folder with an image in it.
struct Folder {
    ~Folder() { fs::remove_all(path); }
    void expectAsBefore() const {
        EXPECT_EQ(std::distance(fs::directory_iterator(path), {}), 1);
        EXPECT_TRUE(contentOf(image) == old);
    }

    std::string path = testing::TempDir() + "dictionaryXXXXXX";
    const std::string image = mkdtemp(path.data()) + std::string("/image");
    const std::string old = (Build().bytes(kGood, image), contentOf(image));
};

TEST(CheckedBuild, TellsEveryProblemInOrder) {
    // L is an error, or a warning when the build is lenient. W is a warning that is reported only
    // when no image is made.
    const std::pair<std::string, std::string> cases[] = {
        {kGood, ""},
        {"", "0:0 E no-records\n"},
        {"\x1F\x8B\bx", "0:0 E not-text\n"},
        {"\xFE\xFF\t\n", "0:0 E not-text\n"},
        {contentOf(Folder().image), "0:0 E not-text\n"},
        {"a\t;\tx;\ty\t;\t;\nb\t;x\n", "1:10 W field-mark\n"},
        {"none\na\tx", "1:5 E no-field\n2:4 E unfinished\n"},
        {"\n\r\na\r\n",
         "1:1 E empty-record\n2:1 E empty-record\n2:1 L cr\n3:2 E no-field\n3:2 L cr\n"},
        {"\xEF\xBB\xBF\tx\r\n\ty\n", "1:1 L bom\n1:6 L cr\n2:1 L empty-key\n"},
        {std::string("a\0\t\0\n", 5), "1:2 E nul\n"},
        {"a\xE4\xB8\tx\n\xED\xA0\x80\t\xFF\n", "1:2 L bad-utf8\n2:1 L bad-utf8\n"},
        {"a😀\t😀\n😀\xFF\t\nb\tx\na😀\t\n", "2:5 L bad-utf8\n"}};
    const TemporaryFile image;
    for (const auto& [source, problems] : cases) {
        for (const bool isLenient : {false, true}) {
            std::string expected = problems;
            std::replace(expected.begin(), expected.end(), 'L', isLenient ? 'W' : 'E');
            const bool isGood = expected.find('E') == expected.npos;
            Build built(isLenient), checked(isLenient);
            const int result = built.bytes(source, image.path());
            EXPECT_EQ(result, isGood ? DICTIONARY_OK : kNotBuilt) << source;
            EXPECT_EQ(built.problems.str(), problems.find("field-mark") == 7 ? "" : expected);
            EXPECT_EQ(built.report.imageBytes, isGood ? image.content().size() : 0);
            EXPECT_EQ(checked.bytes(source, kNoImage), result);
            EXPECT_EQ(checked.problems.str(), expected);
        }
    }
}

TEST(CheckedBuild, TellsTheFirstErrorBeyondTheLimitToo) {
    Build build(true), unseparated;
    build.options.problemLimit = 2;
    EXPECT_EQ(build.bytes("a\tx\r\nb\tx\r\nc\tx\r\nd\ne\n", kNoImage), kNotBuilt);
    EXPECT_EQ(build.problems.str(), "1:4 W cr\n2:4 W cr\n4:2 E no-field\n");
    EXPECT_EQ(build.report.problems, 5u);
    unseparated.options.fieldSeparator = "";
    unseparated.options.recordSeparator = "\\000";
    EXPECT_EQ(unseparated.bytes(kGood, kNoImage), kNotBuilt);
    EXPECT_EQ(unseparated.problems.str(), "0:0 E bad-separator\n0:0 E bad-separator\n");
}

TEST(CheckedBuild, ReadsWhatWindowsWritesAndHandsImagesOut) {
    const Folder folder;
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"\xEF\xBB\xBF"
         "a\tx\r\nab\ty\nac\tz\r\nb\tw\r\n",
         "", folder.old},
        {"a\tx\nab\ty\nac\tz\nb\tw\n", "", folder.old},
        {"\xEF\xBB\xBF\xFF\tx\r\n\r\nb\ty\r",
         "1:4 E bad-utf8\n2:1 E empty-record\n3:4 E unfinished\n", ""},
        {"", "", std::string(8, '\0') + std::string("\x0C\0\0\0", 4)}};
    for (const auto& [source, problems, image] : cases) {
        Build build;
        build.options.fromWindows = build.options.allowEmpty = true;
        EXPECT_EQ(build.bytesOut(source), image.empty() ? kNotBuilt : DICTIONARY_OK);
        EXPECT_EQ(build.problems.str(), problems);
        EXPECT_TRUE(build.made == image);
    }
}

std::string randomText(std::mt19937& random, unsigned most) {
    static const char* const parts[] = {"a",    "b",  "\\n", "中",     "é",
                                        "\xFF", "\r", "|",   "\uFFFF", " "};
    std::string text;
    for (auto i = random() % (most + 1); i > 0; --i) text += parts[random() % std::size(parts)];
    return text;
}

TEST(CheckedBuild, MakesTheImageOfThePlainBuildInSilence) {
    std::mt19937 random(6);
    const std::tuple<const char*, const char*, std::string, std::string> separators[] = {
        {"\t", "\n", "\t", "\n"}, {"\\009", "\\013\\010", "\t", "\r\n"}, {"||", ";;", "||", ";;"}};
    const TemporaryFile image, plainImage;
    for (int round = 0; round < 60; ++round) {
        const auto& [field, record, betweenFields, behindRecord] = separators[round % 3];
        std::string text;
        for (auto i = random() % 40; i > 0; --i) {
            text += random() % 8 == 0 ? "\\n" : randomText(random, 3);
            for (auto j = random() % 3; j < 3; ++j) text += betweenFields + randomText(random, 2);
            text += behindRecord;
        }
        const TemporaryFile source(text);
        Dictionary::CDictionayApp app;
        Build build(true);
        build.options.allowEmpty = true;
        build.options.fieldSeparator = field;
        build.options.recordSeparator = record;
        const long descriptors = openDescriptors();
        const Printed printed = printedBy([&] { build.file(source.path(), image.path()); });
        EXPECT_EQ(printed.out + printed.err, "");
        EXPECT_EQ(openDescriptors(), descriptors);
        printedBy([&, f = field, r = record] {
            const SourceCloser closer;
            ASSERT_EQ(app.buildDic(source.path(), f, r), 1) << text;
            app.writeBinaryDic(plainImage.path());
        });
        EXPECT_TRUE(image.content() == plainImage.content()) << text;
    }
}

TEST(CheckedBuild, TakesKeysOfAllPlanes) {
    const std::vector<std::string> parts = {"a",          "\u00e9",     "\u4e2d",
                                            "\uD7FF",     "\uE000",     "\uFFFF",
                                            "\U00010000", "\U0001F600", "\U0010FFFF"};
    std::map<std::string, std::string> words;
    std::mt19937 random(16);
    for (int i = 0; i < 400; ++i) {
        std::string key;
        for (auto j = random() % 4 + 1; j > 0; --j) key += parts[random() % parts.size()];
        words[key] = std::to_string(i);
    }
    std::string source;
    std::vector<std::vector<std::string>> all;
    for (const auto& [key, data] : words) {
        source += key + '\t' + data + '\n';
        all.push_back({key, data});
    }
    Build fromBytes, fromItems;
    EXPECT_EQ(fromBytes.bytesOut(source), DICTIONARY_OK);
    EXPECT_EQ(fromItems.items(all), DICTIONARY_OK);
    EXPECT_EQ(fromBytes.report.keys, words.size());
    EXPECT_TRUE(fromBytes.made == fromItems.made);
    const std::unique_ptr<DictionaryHandle, decltype(&dictionaryClose)> handle(
        dictionaryOpenBytes({fromBytes.made.data(), fromBytes.made.size()}, DICTIONARY_OPEN_BORROW,
                            nullptr),
        dictionaryClose);
    ASSERT_NE(handle, nullptr);
    for (int i = 0; i < 4000; ++i) {
        std::string text;
        for (auto j = random() % 5; j > 0; --j) text += parts[random() % parts.size()];
        DictionaryText data = {};
        const bool isKey = dictionaryLookupKey(handle.get(), {text.data(), text.size()}, &data);
        const auto word = words.find(text);
        ASSERT_EQ(isKey, word != words.end()) << text;
        const std::string found(isKey ? data.bytes : "", data.size);
        ASSERT_EQ(found, isKey ? word->second + '\t' : "");
    }
    // Plain lookups find only the keys without characters above U+FFFF.
    for (const auto& [key, data] : words) {
        char* const found = search(key.c_str(), handle.get(), false);
        const bool isPlain = key.find_first_of("\xF0\xF4") == key.npos;
        EXPECT_EQ(std::string(found).compare(0, key.size() + 1, key + '\t') == 0, isPlain) << key;
        freeResult(found);
    }
}

TEST(CheckedBuild, TakesItemsAsTheyAre) {
    Build good, bad, none;
    const std::vector<std::vector<std::string>> items = {
        {"\\n", "newline\n", ""}, {"a\n", "\r"}, {"a\n", "again"}};
    EXPECT_EQ(good.items(items), DICTIONARY_OK) << good.problems.str();
    EXPECT_EQ(good.report.records, 3u);
    EXPECT_EQ(good.report.keys, 2u);
    DictionaryHandle* const handle =
        dictionaryOpenBytes({good.made.data(), good.made.size()}, DICTIONARY_OPEN_BORROW, nullptr);
    const std::pair<std::string, std::string> rows[] = {{"\\n", "newline\n\t\t"},
                                                        {"a\n", "\r\t;again\t"}};
    for (const auto& [key, expected] : rows) {
        DictionaryText data = {};
        EXPECT_TRUE(dictionaryLookupKey(handle, {key.data(), key.size()}, &data));
        EXPECT_EQ(std::string(data.bytes, data.size), expected);
    }
    dictionaryClose(handle);
    EXPECT_EQ(bad.items({{"a\tb", "x", "y\t"}, {"a"}, {std::string("a\0", 2), "x"}, {}}),
              kNotBuilt);
    EXPECT_EQ(bad.problems.str(),
              "1:2 E bad-separator\n1:8 E bad-separator\n2:2 E no-field\n3:2 E nul\n"
              "4:1 E empty-record\n");
    EXPECT_EQ(none.items({}), kNotBuilt);
    EXPECT_EQ(none.problems.str(), "0:0 E no-records\n");
}

TEST(CheckedBuild, RefusesWhatIsNoRequest) {
    char old = 0;
    DictionaryImageBuffer buffer = {};
    DictionarySource source = {};
    DictionaryTarget target = {};
    DictionaryBuildOptions options = {};
    DictionaryBuildReport report = {};
    const auto result = [&] {
        return dictionaryBuildFrom(&source, &target, &options, &report, nullptr);
    };
    const auto make = [&] {
        source = {sizeof source, nullptr, {kGood, sizeof kGood - 1}, nullptr, nullptr};
        target = {sizeof target, nullptr, &buffer};
        options.size = sizeof options;
        report.size = sizeof report;
        buffer = {&old, sizeof old};
    };
    const auto expectRefused = [&] {
        EXPECT_EQ(result(), DICTIONARY_BAD_ARGUMENT);
        EXPECT_EQ(buffer.bytes != nullptr, target.size != sizeof target);
    };
    make();
    EXPECT_EQ(result(), DICTIONARY_OK);
    dictionaryFreeBuffer(&buffer);
    for (std::size_t* const size : {&source.size, &target.size, &options.size, &report.size}) {
        make();
        ++*size;
        expectRefused();
    }
    make();
    source.path = "two sources";
    expectRefused();
    make();
    source.bytes = {nullptr, 0};
    expectRefused();
    make();
    target.path = "two targets";
    expectRefused();
    EXPECT_EQ(dictionaryBuildFrom(nullptr, nullptr, nullptr, nullptr, nullptr),
              DICTIONARY_BAD_ARGUMENT);
    EXPECT_EQ(dictionaryBuildFile(nullptr, "image", nullptr, nullptr, nullptr),
              DICTIONARY_BAD_ARGUMENT);
    EXPECT_EQ(dictionaryBuildFile("source", nullptr, nullptr, nullptr, nullptr),
              DICTIONARY_BAD_ARGUMENT);
}

// Checks a source as bytes, as a file and through a pipe.
void checkAllWays(const std::string& source, const std::string& problems) {
    Build builds[3];
    for (Build& build : builds) build.options.recordSeparator = "\\013\\010";
    const TemporaryFile file(source);
    std::FILE* const pipe = popen((std::string("cat ") + file.path()).c_str(), "r");
    builds[0].bytes(source, kNoImage);
    builds[1].file(file.path(), nullptr);
    builds[2].file("/dev/fd/" + std::to_string(fileno(pipe)), nullptr);
    pclose(pipe);
    for (const Build& build : builds) EXPECT_EQ(build.problems.str(), problems) << source.size();
}

TEST(CheckedBuild, CutsRecordsWhereverTheirEndsFall) {
    constexpr std::size_t kStretch = 1 << 20, kMost = 4'194'298;
    const std::string tooLong = "1:" + std::to_string(kMost + 1) + " E record-too-long\n";
    for (const std::size_t around : {kStretch, kMost, 5 * kStretch}) {
        for (std::size_t size = around - 3; size <= around + 1; ++size) {
            checkAllWays("k\t" + std::string(size - 2, '\r') + "\r\nb\r\n",
                         (size > kMost ? tooLong : "") + "2:2 E no-field\n");
        }
    }
    checkAllWays(std::string(5 * kStretch, 'x'), "1:1 E unfinished\n" + tooLong);
}

// Calls `action` while no file may grow beyond a few thousand bytes. The signal that the system
// sends for that would end the process.
template <typename Action>
int onFullDisk(Action action) {
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit = {5000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    const int result = action();
    setrlimit(RLIMIT_FSIZE, &before);
    return result;
}

TEST(CheckedBuild, LeavesTheOldImageWhereItCannotReadOrWrite) {
    const Folder folder, elsewhere;
    const std::string pipe = elsewhere.path + "/pipe";
    mkfifo(pipe.c_str(), 0666);
    const std::string loop = elsewhere.path + "/loop";
    fs::create_symlink("loop", loop);
    const long descriptors = openDescriptors();
    const auto expectFailure = [&](Build& build, int result, const char* problem, int error) {
        EXPECT_EQ(result, kNotBuilt);
        EXPECT_EQ(build.problems.str(), std::string("0:0 E ") + problem + "\n");
        EXPECT_EQ(build.error, error) << strerror(build.error);
        EXPECT_EQ(openDescriptors(), descriptors);
        folder.expectAsBefore();
    };
    const std::pair<std::string, int> places[] = {{"/no/such/image", ENOENT},
                                                  {folder.path, EISDIR},
                                                  {folder.path + "/", EISDIR},
                                                  {"", ENOENT},
                                                  {pipe, EOPNOTSUPP},
                                                  {folder.image + "/x", ENOTDIR},
                                                  {loop, ELOOP}};
    for (const auto& [place, error] : places) {
        Build early;
        expectFailure(early, early.bytes(kGood, place), "cannot-write", error);
        EXPECT_TRUE(early.steps.empty()) << place;
    }
    const std::string copy = elsewhere.path + "/copy", link = elsewhere.path + "/link";
    fs::create_hard_link(folder.image, copy);
    fs::create_symlink(copy, link);
    for (const std::string& name : {folder.image, copy, link}) {
        Build same, other;
        expectFailure(same, same.file(name, folder.image.c_str()), "same-file", 0);
        expectFailure(other, other.file(folder.image, name.c_str()), "same-file", 0);
    }
    Build full, occupied, missing, unreadable;
    const int onFull = onFullDisk([&] { return full.bytes(kGood, folder.image); });
    expectFailure(full, onFull, "cannot-write", EFBIG);
    const std::string other = folder.path + "/other";
    occupied.onStep = [&] { return fs::create_directory(other), true; };
    const int result = occupied.bytes(kGood, other);
    rmdir(other.c_str());
    expectFailure(occupied, result, "cannot-write", EISDIR);
    const char* const image = folder.image.c_str();
    expectFailure(missing, missing.file("/no/such", image), "cannot-read", ENOENT);
    expectFailure(unreadable, unreadable.file(folder.path, image), "cannot-read", EISDIR);
}

// The permissions of the unfinished image, or 0 if there is none.
mode_t unfinishedAccess(const std::string& folder) {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        struct stat status;
        const bool isHidden = entry.path().filename().string().front() == '.';
        if (isHidden && stat(entry.path().c_str(), &status) == 0) return status.st_mode & 07777;
    }
    return 0;
}

TEST(CheckedBuild, KeepsLinksAndAccess) {
    const Folder folder;
    const mode_t mask = umask(027);
    // Only some users can change the owner of a file.
    const uid_t owner = chown(folder.image.c_str(), 1, 1) == 0 ? 1 : geteuid();
    chmod(folder.image.c_str(), 0604);
    for (const auto& [file, mode] : {std::pair{"image", 0604u}, std::pair{"new", 0640u}}) {
        const std::string link = folder.path + "/linkTo" + file;
        fs::create_symlink(file, link);
        Build build;
        build.onStep = [&] {
            const bool isWriting = std::get<0>(build.steps.back()) == DICTIONARY_STAGE_WRITE;
            EXPECT_EQ(unfinishedAccess(folder.path), isWriting ? 0600u : 0u);
            return true;
        };
        EXPECT_EQ(build.bytes(kOther, link), DICTIONARY_OK);
        EXPECT_TRUE(fs::is_symlink(link));
        struct stat status;
        ASSERT_EQ(stat(link.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, mode);
        EXPECT_EQ(status.st_uid, mode == 0604 ? owner : geteuid());
        EXPECT_FALSE(contentOf(link) == folder.old);
    }
    umask(mask);
}

// With several users: another user's link in a folder that everybody may write to is followed only
// if the system follows it. And a folder need not be readable.
TEST(CheckedBuild, GoesWhereTheSystemLetsTheUserGo) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can be two users";
    constexpr uid_t kUser = 65534;
    const Folder folder, target;
    const std::string link = folder.path + "/link", made = folder.path + "/made";
    chmod(folder.path.c_str(), 01733);
    fs::create_symlink(target.image, link);
    EXPECT_EQ(lchown(link.c_str(), kUser, kUser), 0);
    const bool isFollowed = access(link.c_str(), W_OK) == 0;
    Build linked, own, protectedFile;
    EXPECT_EQ(linked.bytes(kOther, link), isFollowed ? DICTIONARY_OK : kNotBuilt);
    EXPECT_EQ(contentOf(target.image) == target.old, !isFollowed);
    EXPECT_EQ(seteuid(kUser), 0);
    EXPECT_EQ(own.bytes(kOther, made), DICTIONARY_OK);
    EXPECT_EQ(protectedFile.bytes(kOther, folder.image), kNotBuilt);
    EXPECT_EQ(seteuid(0), 0);
    EXPECT_EQ(protectedFile.error, EACCES);
    EXPECT_TRUE(fs::remove(made) && fs::remove(link));
    folder.expectAsBefore();
}

TEST(CheckedBuild, TakesDescriptorsOfNamedFilesAlone) {
    const Folder folder;
    const auto placeOf = [](int file) { return "/dev/fd/" + std::to_string(file); };
    Dictionary::Descriptor file(open(folder.image.c_str(), O_RDONLY));
    EXPECT_EQ(Build().bytes(kOther, placeOf(file.number())), DICTIONARY_OK);
    EXPECT_FALSE(contentOf(folder.image) == folder.old);
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const Dictionary::Descriptor end(pipe[0]), otherEnd(pipe[1]);
    // The open file no longer has a name.
    for (const auto& [number, error] :
         {std::pair{pipe[1], EOPNOTSUPP}, std::pair{file.number(), ENOENT}}) {
        Build build;
        EXPECT_EQ(build.bytes(kOther, placeOf(number)), kNotBuilt);
        EXPECT_EQ(build.error, error);
        EXPECT_TRUE(build.steps.empty());
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path), {}), 1);
}

// A pipe without a writer, and one whose writer writes nothing.
TEST(CheckedBuild, StopsWhileItWaitsForAPipe) {
    const Folder folder, elsewhere;
    const std::string pipe = elsewhere.path + "/pipe";
    mkfifo(pipe.c_str(), 0600);
    for (const int flags : {O_RDONLY, O_RDWR}) {
        const Dictionary::Descriptor held(open(pipe.c_str(), flags | O_NONBLOCK));
        Build build;
        build.onStep = [&] { return build.steps.size() < 3; };
        EXPECT_EQ(build.file(pipe, folder.image.c_str()), DICTIONARY_STOPPED);
        EXPECT_EQ(build.steps, decltype(build.steps)(3, {DICTIONARY_STAGE_READ, 0, 0}));
        folder.expectAsBefore();
    }
}

TEST(CheckedBuild, StopsAtEveryStep) {
    const Folder folder;
    std::string source;
    for (int i = 0; i < 40000; ++i) source += std::to_string(i) + "abcdefghi\tdata of a key\n";
    Build whole;
    EXPECT_EQ(whole.bytes(source, folder.path + "/whole"), DICTIONARY_OK);
    fs::remove(folder.path + "/whole");
    std::vector<int> ended;
    for (const auto& [stage, done, total] : whole.steps) {
        if (done == total) ended.push_back(stage);
    }
    EXPECT_EQ(ended, (std::vector<int>{0, 1, 2}));
    EXPECT_GT(whole.steps.size(), 10u);
    // How many steps there are depends on the time that passes.
    int result = DICTIONARY_STOPPED;
    for (std::size_t last = 1; result == DICTIONARY_STOPPED; ++last) {
        Build stopped;
        stopped.onStep = [&] {
            if (stopped.steps.size() < last) return true;
            if (last % 3 == 0) throw last;
            if (last % 3 == 1) pthread_exit(nullptr);
            return false;
        };
        // The result stays DICTIONARY_STOPPED if the callback ends the thread.
        std::thread([&] { result = stopped.bytes(source, folder.image); }).join();
        if (result == DICTIONARY_OK) break;
        EXPECT_EQ(stopped.steps.size(), last);
        folder.expectAsBefore();
    }
}

TEST(CheckedBuild, LeavesTheOldOrTheNewImageWhenKilled) {
    const Folder folder, other;
    Build().bytes(kOther, other.image);
    const std::string images[] = {folder.old, contentOf(other.image)};
    std::mt19937 random(6);
    for (int round = 0; round < 40; ++round) {
        const pid_t child = fork();
        ASSERT_NE(child, -1);
        while (child == 0) {
            Build().bytes(kOther, folder.image);
            Build().bytes(kGood, folder.image);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 20000));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const std::string now = contentOf(folder.image);
        ASSERT_TRUE(now == images[0] || now == images[1]);
    }
}

}  // namespace
