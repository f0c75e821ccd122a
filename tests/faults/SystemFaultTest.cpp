// Every system call of every operation on files fails. The checked operations say why and leave the
// old image whole; the plain ones do what their hosts are used to.

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>

#include "DATInterface.h"
#include "Dictionary.h"
#include "Faults.h"
#include "TemporaryFile.h"

namespace {

namespace fs = std::filesystem;

constexpr char kSource[] = "a\t1\nab\t2\nb\t3\n", kOldSource[] = "old\timage\n";
constexpr int kErrors[] = {EIO, ENOSPC, EINTR, EMFILE, ENOMEM, kShort};

// A folder with a source, and an image of another source.
struct Place {
    Place() {
        std::ofstream(source) << kSource;
        std::ofstream(image + ".source") << kOldSource;
        dictionaryBuildFile((image + ".source").c_str(), image.c_str(), nullptr, nullptr, nullptr);
        fs::remove(image + ".source");
        old = imageBytes();
    }
    ~Place() { fs::remove_all(path); }

    std::string imageBytes() const {
        std::ifstream file(image, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    long fileCount() const { return std::distance(fs::directory_iterator(path), {}); }

    std::string path = testing::TempDir() + "dictionaryXXXXXX";
    const std::string source = mkdtemp(path.data()) + std::string("/source");
    const std::string image = path + "/image";
    std::string old;
};

// Makes the calls of a function fail, one after the other. '.' is a failure that the operation
// tolerates, another letter one that it reports. Equal letters in a row are written once.
template <typename Operation>
std::string outcomes(const char* call, int error, const Operation& operation) {
    std::string letters;
    for (int number = 1;; ++number) {
        const long descriptors = openDescriptors();
        arm({call, number, error});
        const char letter = operation(error);
        disarm();
        EXPECT_EQ(openDescriptors(), descriptors) << call << ' ' << number;
        if (!hasStruck()) return letters;
        if (letters.empty() || letters.back() != letter) letters += letter;
    }
}

struct Row {
    const char* call;
    const char* outcomes;
    const char* whenInterrupted = outcomes;
};

template <typename Operation>
void expectOutcomes(const Row& row, const Operation& operation) {
    for (const int error : kErrors) {
        std::string expected = error == EINTR ? row.whenInterrupted : row.outcomes;
        const std::string actual = outcomes(row.call, error, operation);
        if (error == kShort) expected = actual.empty() ? "" : ".";
        EXPECT_EQ(actual, expected) << row.call << ": " << strerror(error);
    }
}

// Returns R if the source could not be read, W if the image could not be written.
char build(const Place& place, const std::string& whole, int error) {
    DictionaryError reported;
    const int result =
        dictionaryBuildFile(place.source.c_str(), place.image.c_str(), nullptr, nullptr, &reported);
    disarm();
    const bool isBuilt = result == DICTIONARY_OK;
    EXPECT_TRUE(place.imageBytes() == (isBuilt ? whole : place.old));
    EXPECT_EQ(place.fileCount(), 2) << "an unfinished image was left";
    fs::resize_file(place.image, 0);
    std::ofstream(place.image, std::ios::binary) << place.old;
    if (isBuilt) return '.';
    EXPECT_EQ(reported.systemError, error);
    return reported.code == DICTIONARY_CANNOT_READ ? 'R' : 'W';
}

TEST(SystemFault, CheckedBuildsReportWhatFailedAndLeaveTheOldImage) {
    const Row rows[] = {{"fstatat", "W"},      {"open", "WR", "."},   {"fstat", ".W"},
                        {"openat", "W.", "."}, {"read", "R", "."},    {"write", "W", "."},
                        {"fsync", "W.", "."},  {"close", ".W.", "."}, {"renameat", "W"}};
    const Place place;
    std::string whole;
    {
        const Place other;
        dictionaryBuildFile(place.source.c_str(), other.image.c_str(), nullptr, nullptr, nullptr);
        whole = other.imageBytes();
    }
    for (const Row& row : rows) {
        expectOutcomes(row, [&](int error) { return build(place, whole, error); });
    }
}

// Returns U if the image could not be opened.
char openImage(const std::string& name, int mode, int error) {
    DictionaryError reported;
    DictionaryHandle* const handle = dictionaryOpenFile(name.c_str(), mode, &reported);
    dictionaryClose(handle);
    EXPECT_EQ(handle == nullptr, reported.code != DICTIONARY_OK);
    if (handle != nullptr) return '.';
    EXPECT_EQ(reported.systemError, error);
    EXPECT_EQ(reported.code, error == ENOMEM ? DICTIONARY_NO_MEMORY : DICTIONARY_CANNOT_READ);
    return 'U';
}

TEST(SystemFault, CheckedOpensReportWhatFailed) {
    const std::pair<int, Row> rows[] = {
        {DICTIONARY_OPEN_MAP, {"open", "U", "."}}, {DICTIONARY_OPEN_MAP, {"fstat", "U"}},
        {DICTIONARY_OPEN_MAP, {"mmap", "U"}},      {DICTIONARY_OPEN_MAP, {"close", "."}},
        {DICTIONARY_OPEN_COPY, {"mmap", "U"}},     {DICTIONARY_OPEN_COPY, {"read", "U", "."}}};
    const Place place;
    for (const auto& [mode, row] : rows) {
        expectOutcomes(row,
                       [&, how = mode](int error) { return openImage(place.image, how, error); });
    }
}

struct Plain {
    Fault fault;
    std::string says;  // on standard error
    int keptDescriptors;
};

TEST(SystemFault, PlainLoadsSayWhyAndFindNothing) {
    const Place place;
    const std::string opening = "Error open binary dic : " + place.image + " ";
    const std::string mapping = "Error Mapping file : " + place.image + " ";
    const Plain rows[] = {{{"open", 1, EMFILE}, opening + "Too many open files\n\n", 0},
                          {{"lseek", 1, EIO}, mapping + "Cannot allocate memory\n\n", 1},
                          {{"mmap", 1, EIO}, mapping + "Input/output error\n\n", 1},
                          {{"close", 1, EIO}, "", 0}};
    for (const auto& [fault, says, keptDescriptors] : rows) {
        SCOPED_TRACE(fault.call);
        const long descriptors = openDescriptors();
        const std::string expected = says.empty() ? "old\t" : "";
        const Printed printed = printedBy([&, &planned = fault] {
            arm(planned);
            void* const handle = loadBin(place.image.c_str());
            disarm();
            EXPECT_TRUE(hasStruck());
            char* const found = search("old", handle, false);
            EXPECT_EQ(found, expected);
            freeResult(found);
            destroyBin(handle);
        });
        EXPECT_EQ(printed.err, says);
        EXPECT_EQ(openDescriptors(), descriptors + keptDescriptors);
    }
}

// After a fault, the image has all keys or none, or is not written.
TEST(SystemFault, PlainBuildsGoOn) {
    const std::string data = "1\t\n2\t\n3\t\n", built = "Build OK\n",
                      size = "size of dictionary : ";
    const Place place;
    Fault planned = {"none", 1, 0};
    const auto build = [&] {
        const SourceCloser closer;
        arm(planned);
        buildTree(place.source.c_str(), place.image.c_str());
        disarm();
    };
    printedBy(build);
    const std::string whole = place.imageBytes();
    const std::string wholeSize = size + std::to_string(whole.size()) + "\n\n";
    const std::string empty = std::string("\0\0\0\0\0\0\0\0\x0c\0\0\0", 12);
    const std::tuple<Fault, std::string, std::string> rows[] = {
        {{"read", 1, EIO}, built + size + "12\n\n", empty},
        {{"read", 1, EINTR}, built + size + "12\n\n", empty},
        {{"read", 2, EIO}, data + built + wholeSize, whole},
        {{"read", 1, kShort}, data + built + wholeSize, whole},
        {{"fopen", 1, EMFILE}, data + built, place.old},
        {{"fwrite", 1, ENOSPC, true}, data + built + wholeSize, ""},
        {{"fclose", 1, EIO}, data + built + wholeSize, whole},
    };
    for (const auto& [fault, says, image] : rows) {
        SCOPED_TRACE(fault.call);
        std::ofstream(place.image, std::ios::binary) << place.old;
        planned = fault;
        const Printed printed = printedBy(build);
        EXPECT_TRUE(hasStruck());
        EXPECT_EQ(printed.err, says);
        EXPECT_TRUE(place.imageBytes() == image);
    }
    planned = {"open", 1, EMFILE};
    EXPECT_EXIT(build(), testing::ExitedWithCode(1), "");
}

}  // namespace
