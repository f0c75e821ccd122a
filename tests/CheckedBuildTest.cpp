#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <functional>
#include <random>
#include <sstream>
#include <thread>
#include <tuple>

#include "DATChecked.h"
#include "DATDictionarySample.h"
#include "Descriptor.h"
#include "SourceRecords.h"
#include "TemporaryFile.h"

namespace {

namespace fs = std::filesystem;

constexpr char kGood[] = "a\tx\nab\ty\nac\tz\nb\tw\n", kOther[] = "c\tother\ncd\tdata\n";
constexpr char kNoImage[] = "no image";  // for a source to be checked only

// A build, its progress and what it says: "LINE:COLUMN SEVERITY NAME" of each problem.
struct Build {
    explicit Build(bool lenient = false) {
        options.size = sizeof options;
        options.lenient = lenient;
        options.context = this;
        options.onProblem = [](void* build, const DictionaryProblem* problem) {
            static_cast<Build*>(build)->note(*problem);
        };
        options.onProgress = [](void* build, int stage, std::uint64_t done, std::uint64_t total) {
            static_cast<Build*>(build)->steps.emplace_back(stage, done, total);
            return static_cast<Build*>(build)->onStep();
        };
        report.size = sizeof report;
    }
    Build(const Build&) = delete;

    void note(const DictionaryProblem& problem) {
        problems << problem.line << ':' << problem.column << ' ' << "ERW"[problem.severity] << ' '
                 << dictionaryProblemName(problem.code) << '\n';
        error = problem.systemError;
        EXPECT_EQ(std::strstr(problem.text, strerror(error)) != nullptr, error != 0);
    }
    int file(const std::string& source, const char* image) {
        return dictionaryBuild(source.c_str(), image, &options, &report);
    }
    int bytes(const std::string& source, const std::string& image) {
        const char* const name = image == kNoImage ? nullptr : image.c_str();
        return dictionaryBuildBytes(source.data(), source.size(), name, &options, &report);
    }

    DictionaryBuildOptions options = {};
    DictionaryBuildReport report = {};
    std::ostringstream problems;
    std::string handedOut;
    int error = 0;
    std::vector<std::tuple<int, std::uint64_t, std::uint64_t>> steps;
    std::function<bool()> onStep = [] { return true; };
};

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A folder of its own with an image in it.
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
    // L stands for an error, or a warning when the build is lenient; W for a warning when no image
    // is made.
    const std::pair<std::string, std::string> cases[] = {
        {kGood, ""},
        {"", "0:0 E no-records\n"},
        {"\x1F\x8B\bx", "0:0 E not-text\n"},
        {"\xFE\xFF\t\n", "0:0 E not-text\n"},
        {contentOf(Folder().image), "0:0 E not-text\n"},
        {"a\t;\tx;\ty\t;\t;\nb\t;x\n", "1:10 W semicolon\n"},
        {"none\na\tx", "1:5 E no-field\n2:4 E unfinished\n"},
        {"\n\r\na\r\n",
         "1:1 E empty-record\n2:1 E empty-record\n2:1 L cr\n3:2 E no-field\n3:2 L cr\n"},
        {"\xEF\xBB\xBF\tx\r\n\ty\n", "1:1 L bom\n1:6 L cr\n2:1 L empty-key\n"},
        {std::string("a\0\t\0\n", 5), "1:2 E nul\n"},
        {"a\xE4\xB8\tx\n\xED\xA0\x80\t\xFF\n", "1:2 L bad-utf8\n2:1 L bad-utf8\n"},
        {"a😀\t😀\n😀\xFF\t\nb\tx\na😀\t\n",
         "1:2 R beyond-bmp\n2:1 R beyond-bmp\n2:5 L bad-utf8\n4:2 R beyond-bmp\n"}};
    const TemporaryFile image;
    for (const auto& [source, problems] : cases) {
        for (const bool isLenient : {false, true}) {
            std::string expected = problems;
            std::replace(expected.begin(), expected.end(), 'L', isLenient ? 'W' : 'E');
            const bool isGood = expected.find('E') == expected.npos;
            const bool isRefused = expected.find('R') != expected.npos;
            Build built(isLenient), checked(isLenient);
            const int result = built.bytes(source, image.path());
            EXPECT_EQ(result, isGood ? int{isRefused} : DICTIONARY_NOT_BUILT) << source;
            EXPECT_EQ(built.problems.str(), problems.find("semicolon") == 7 ? "" : expected);
            EXPECT_EQ(built.report.imageBytes, isGood ? image.content().size() : 0);
            EXPECT_EQ(built.report.refused, isRefused ? 2 : 0);
            EXPECT_EQ(checked.bytes(source, kNoImage), result);
            EXPECT_EQ(checked.problems.str(), expected);
        }
    }
}

TEST(CheckedBuild, TellsTheFirstErrorBeyondTheLimitToo) {
    Build build(true), unseparated;
    build.options.problemLimit = 2;
    EXPECT_EQ(build.bytes("a\tx\r\nb\tx\r\nc\tx\r\nd\ne\n", kNoImage), DICTIONARY_NOT_BUILT);
    EXPECT_EQ(build.problems.str(), "1:4 W cr\n2:4 W cr\n4:2 E no-field\n");
    EXPECT_EQ(build.report.problems, 5u);
    unseparated.options.fieldSeparator = "";
    unseparated.options.recordSeparator = "\\000";
    EXPECT_EQ(unseparated.bytes(kGood, kNoImage), DICTIONARY_NOT_BUILT);
    EXPECT_EQ(unseparated.problems.str(), "0:0 E bad-separator\n0:0 E bad-separator\n");
    EXPECT_STREQ(dictionaryProblemName(DICTIONARY_PROBLEM_NONE), "none");
    for (const int code : {DICTIONARY_PROBLEM_NONE - 1, DICTIONARY_PROBLEM_SEMICOLON + 1}) {
        EXPECT_STREQ(dictionaryProblemName(code), "unknown");
    }
    EXPECT_EQ(dictionaryBuildBytes("a\tx\n", 4, nullptr, nullptr, nullptr), DICTIONARY_BUILT);
}

TEST(CheckedBuild, ReadsWhatWindowsWritesAndHandsImagesOut) {
    const Folder folder;
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"\xEF\xBB\xBF"
         "a\tx\r\nab\ty\nac\tz\r\nb\tw\r\n",
         "", folder.old},
        {"\xEF\xBB\xBF\xFF\tx\r\n\r\nb\ty\r",
         "1:4 E bad-utf8\n2:1 E empty-record\n3:4 E unfinished\n", ""},
        {"", "", std::string(8, '\0') + std::string("\x0C\0\0\0", 4)}};
    for (const auto& [source, problems, image] : cases) {
        Build build;
        build.options.windows = build.options.allowEmpty = true;
        build.options.onImage = [](void* context, const void* bytes, std::size_t size) {
            static_cast<Build*>(context)->handedOut.append(static_cast<const char*>(bytes), size);
            return true;
        };
        EXPECT_EQ(build.bytes(source, kNoImage),
                  image.empty() ? DICTIONARY_NOT_BUILT : DICTIONARY_BUILT);
        EXPECT_EQ(build.problems.str(), problems);
        EXPECT_TRUE(build.handedOut == image);
    }
}

std::string randomText(std::mt19937& random, unsigned most) {
    static const char* const parts[] = {"a", "b", "\\n", "中", "é", "\xFF", "\r", "|", "😀", " "};
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
        const Printed plain = printedBy([&, f = field, r = record] {
            const SourceCloser closer;
            ASSERT_EQ(app.buildDic(source.path(), f, r), 1) << text;
            app.writeBinaryDic(plainImage.path());
        });
        EXPECT_EQ(build.report.refused == 0, plain.err.find("wrong add") == plain.err.npos);
        EXPECT_TRUE(image.content() == plainImage.content()) << text;
    }
}

// Checks bytes, a file of them and a pipe.
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
    constexpr std::size_t kStretch = 1 << 20, kMost = Dictionary::SourceRecords::kMaxRecordBytes;
    const std::string tooLong = "1:" + std::to_string(kMost + 1) + " E record-too-long\n";
    for (const std::size_t around : {kStretch, kMost, 5 * kStretch}) {
        for (std::size_t size = around - 3; size <= around + 1; ++size) {
            checkAllWays("k\t" + std::string(size - 2, '\r') + "\r\nb\r\n",
                         (size > kMost ? tooLong : "") + "2:2 E no-field\n");
        }
    }
    checkAllWays(std::string(5 * kStretch, 'x'), "1:1 E unfinished\n" + tooLong);
}

// Calls `action` while no file may grow beyond a few thousand bytes. The signal that this brings
// would end the process.
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
        EXPECT_EQ(result, DICTIONARY_NOT_BUILT);
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
    Build full, occupied, missing, unreadable, none, noBytes;
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
    const int ofNone = dictionaryBuild(nullptr, image, &none.options, &none.report);
    expectFailure(none, ofNone, "cannot-read", EFAULT);
    const int ofNoBytes =
        dictionaryBuildBytes(nullptr, 1, image, &noBytes.options, &noBytes.report);
    expectFailure(noBytes, ofNoBytes, "cannot-read", EFAULT);
}

// The rights of the unfinished image, or 0.
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
    // Only some users can give a file away.
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
        EXPECT_EQ(build.bytes(kOther, link), DICTIONARY_BUILT);
        EXPECT_TRUE(fs::is_symlink(link));
        struct stat status;
        ASSERT_EQ(stat(link.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, mode);
        EXPECT_EQ(status.st_uid, mode == 0604 ? owner : geteuid());
        EXPECT_FALSE(contentOf(link) == folder.old);
    }
    umask(mask);
}

// Where users may be other ones: a link of somebody else's among everybody's files is followed only
// if the system follows it, and a folder need not be readable.
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
    EXPECT_EQ(linked.bytes(kOther, link), isFollowed ? DICTIONARY_BUILT : DICTIONARY_NOT_BUILT);
    EXPECT_EQ(contentOf(target.image) == target.old, !isFollowed);
    EXPECT_EQ(seteuid(kUser), 0);
    EXPECT_EQ(own.bytes(kOther, made), DICTIONARY_BUILT);
    EXPECT_EQ(protectedFile.bytes(kOther, folder.image), DICTIONARY_NOT_BUILT);
    EXPECT_EQ(seteuid(0), 0);
    EXPECT_EQ(protectedFile.error, EACCES);
    EXPECT_TRUE(fs::remove(made) && fs::remove(link));
    folder.expectAsBefore();
}

TEST(CheckedBuild, TakesDescriptorsOfNamedFilesAlone) {
    const Folder folder;
    const auto placeOf = [](int file) { return "/dev/fd/" + std::to_string(file); };
    Dictionary::Descriptor file(open(folder.image.c_str(), O_RDONLY));
    EXPECT_EQ(Build().bytes(kOther, placeOf(file.number())), DICTIONARY_BUILT);
    EXPECT_FALSE(contentOf(folder.image) == folder.old);
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const Dictionary::Descriptor end(pipe[0]), otherEnd(pipe[1]);
    // The file that is open has no name now.
    for (const auto& [number, error] :
         {std::pair{pipe[1], EOPNOTSUPP}, std::pair{file.number(), ENOENT}}) {
        Build build;
        EXPECT_EQ(build.bytes(kOther, placeOf(number)), DICTIONARY_NOT_BUILT);
        EXPECT_EQ(build.error, error);
        EXPECT_TRUE(build.steps.empty());
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path), {}), 1);
}

// A pipe that nobody writes to, and one that somebody only holds.
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
    EXPECT_EQ(whole.bytes(source, folder.path + "/whole"), DICTIONARY_BUILT);
    fs::remove(folder.path + "/whole");
    std::vector<int> ended;
    for (const auto& [stage, done, total] : whole.steps) {
        if (done == total) ended.push_back(stage);
    }
    EXPECT_EQ(ended, (std::vector<int>{0, 1, 2}));
    EXPECT_GT(whole.steps.size(), 10u);
    // How many there are depends on the time that passes.
    int result = DICTIONARY_STOPPED;
    for (std::size_t last = 1; result == DICTIONARY_STOPPED; ++last) {
        Build stopped;
        stopped.onStep = [&] {
            if (stopped.steps.size() < last) return true;
            if (last % 3 == 0) throw last;
            if (last % 3 == 1) pthread_exit(nullptr);
            return false;
        };
        // It stays stopped where the callback ends the thread.
        std::thread([&] { result = stopped.bytes(source, folder.image); }).join();
        if (result == DICTIONARY_BUILT) break;
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
