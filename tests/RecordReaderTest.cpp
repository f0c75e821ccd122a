#include "RecordReader.h"

#include <random>
#include <tuple>

#include "TemporaryFile.h"

namespace {

using Dictionary::CRecordReader;
using Texts = std::vector<std::string>;

constexpr std::size_t kFill = 4194304 - 5;

Texts recordsOf(const std::string& content, const std::string& separator) {
    const TemporaryFile file(content);
    CRecordReader reader;
    EXPECT_EQ(reader.init(file.path(), separator, "\t"), 0);
    Texts records;
    while (const char* record = reader.next()) records.emplace_back(record);
    EXPECT_EQ(reader.next(), nullptr);
    return records;
}

Texts split(const std::string& content, const std::string& separator) {
    Texts records;
    std::size_t from = 0;
    for (std::size_t to; (to = content.find(separator, from)) != std::string::npos;) {
        records.push_back(content.substr(from, to - from));
        from = to + separator.size();
    }
    return records;
}

TEST(RecordReader, CutsAWholeFile) {
    const std::string full(kFill, 'x'), most(kFill - 1, 'x'), y(kFill, 'y');
    const std::string tooLong = "One Record Is TOO LONG ";
    const std::tuple<std::string, std::string, Texts, std::string> cases[] = {
        {"\n\nab\nlost", "\\010", {"", "", "ab"}, ""},
        {{"a\nb\0c\nd\n", 8}, "\n", {"a"}, ""},
        {"a-bc-d-", "-\\000", {"a", "c", ""}, ""},
        {"\n" + most + "yyyyyyy\nz\n", "\n", {"", most + "yyyyy", "z"}, ""},
        {full + "y\nz\n", "\n", {"y", "z"}, tooLong},
        {"\n" + most + y + "b\nz\n", "\n", {"", most + "b", "z"}, tooLong + most}};
    for (const auto& [content, separator, records, message] : cases) {
        // Renamed, as a lambda cannot capture structured bindings.
        const auto cut = [&, &file = content, &by = separator, &expected = records] {
            EXPECT_TRUE(recordsOf(file, by) == expected);
        };
        EXPECT_TRUE(printedBy(cut).out == message) << content.substr(0, 9);
    }
}

// One or two separators at every place across the ends of two fills, in a file of long, short and
// empty records with stray bytes of the separator in them.
TEST(RecordReader, CutsAcrossFills) {
    constexpr std::size_t kAround = 16;
    std::mt19937 random(1);
    for (const std::string separator : {"\n", "\r\n", "<->", "aab"}) {
        std::string content;
        while (content.size() < 2 * kFill + kAround) {
            content.append(random() % 3 * (random() % 100000), 'x');
            content += random() % 4 == 0 ? separator.substr(0, 1) : separator;
        }
        for (std::size_t before = 0; before <= separator.size(); ++before) {
            for (const std::string& middle : {separator, separator + separator}) {
                for (const std::size_t end : {kFill, 2 * kFill}) {
                    content.replace(end - kAround, 2 * kAround, 2 * kAround, 'x');
                    content.replace(end - before, middle.size(), middle);
                }
                EXPECT_TRUE(recordsOf(content, separator) == split(content, separator))
                    << testing::PrintToString(middle) << " begun " << before << " before";
            }
        }
    }
}

TEST(RecordReader, CountsAShortTailAsLongAsTheSeparator) {
    unsigned long tailPart = 99, headPart = 99;
    EXPECT_TRUE(CRecordReader().findSplitPosition("a<", 2, "->b", "<->", 3, tailPart, headPart));
    EXPECT_EQ(std::make_pair(tailPart, headPart), std::make_pair(2ul, 1ul));
    EXPECT_FALSE(CRecordReader().findSplitPosition("a", 1, "\nb", "\n", 1, tailPart, headPart));
    EXPECT_EQ(std::make_pair(tailPart, headPart), std::make_pair(0ul, 1ul));
}

TEST(RecordReader, SplitsRecords) {
    const std::tuple<std::string, std::string, Texts> cases[] = {{"a\t\t", "\\009", {"a", "", ""}},
                                                                 {"", "\t", {""}},
                                                                 {"a--b---", "--", {"a", "b", "-"}},
                                                                 {"a-bc-", "-\\000", {"a", "c"}}};
    for (auto [record, separator, fields] : cases) {
        CRecordReader reader;
        reader.init("/dev/null", "\n", separator);
        std::vector<char*> found(3, nullptr);
        EXPECT_EQ(reader.splitRecord(record.data(), found), static_cast<int>(fields.size()));
        EXPECT_EQ(Texts(found.begin(), found.end()), fields);
    }
}

TEST(RecordReader, EndsTheProcessWithoutAFile) {
    const auto openMissing = [] {
        dup2(STDERR_FILENO, STDOUT_FILENO);  // where the message is looked for
        CRecordReader().init("/no/such", "\n", "\t");
    };
    const char* const message = "^open file failed! The file is: /no/such\n$";
    EXPECT_EXIT(openMissing(), testing::ExitedWithCode(1), message);
}

TEST(RecordReader, ClosesOnlyDescriptorZero) {
    const int input = dup(STDIN_FILENO), other = nextDescriptor();
    CRecordReader().init("/dev/null", "\n", "\t");
    EXPECT_NE(fcntl(other, F_GETFD), -1);
    close(STDIN_FILENO);
    CRecordReader().init("/dev/null", "\n", "\t");
    EXPECT_EQ(fcntl(STDIN_FILENO, F_GETFD), -1);
    dup2(input, STDIN_FILENO);
    close(input);
}

}  // namespace
