// The check of sources: its reports are in order, and what it accepts is built to the same bytes as
// by the plain build.

#include "DATDictionarySample.h"
#include "Dictionary.h"
#include "Fuzz.h"
#include "SlowText.h"
#include "TemporaryFile.h"

namespace {

// A build takes far longer than a check, so only one source in this many is built.
constexpr std::size_t kBuilds = 16;

struct Reported {
    std::vector<std::pair<std::uint64_t, std::uint64_t>> places;
    int worst = DICTIONARY_WARNING;
};

struct Separators {
    const char* field;
    const char* record;
};

constexpr Separators kSeparators[] = {{"\t", "\n"}, {"||", ";;"}, {"\\009", "\\013\\010"}};

DictionaryBuildOptions optionsFor(const Separators& separators, bool lenient, Reported& reported) {
    DictionaryBuildOptions options = {};
    options.size = sizeof options;
    options.fieldSeparator = separators.field;
    options.recordSeparator = separators.record;
    options.problemLimit = 1000000;
    options.lenient = lenient;
    options.context = &reported;
    options.onProblem = [](void* context, const DictionaryError* problem) {
        Reported& all = *static_cast<Reported*>(context);
        all.places.emplace_back(problem->line, problem->column);
        all.worst = std::min(all.worst, problem->severity);
    };
    return options;
}

bool isUtf8(std::string text) {
    while (!text.empty()) {
        std::uint32_t value = 0;
        long units = 0;
        if (readSlowly(text, value, units) != conversionOK) return false;
        text.erase(0, static_cast<std::size_t>(units));
    }
    return true;
}

// Whether the strict check should find no error.
bool isSound(const std::string& source, const Separators& separators) {
    const std::string recordEnd = Dictionary::getEscapeSeparator(separators.record);
    std::vector<std::string> records = split(source, recordEnd);
    const bool isFinished = records.back().empty();
    records.pop_back();
    if (records.empty()) return false;
    const auto isGood = [&](const std::string& record) {
        const std::size_t key = record.find(Dictionary::getEscapeSeparator(separators.field));
        if (key == record.npos || key == 0) return false;
        const bool endsInCr = recordEnd == "\n" && record.back() == '\r';
        return !endsInCr && isUtf8(record.substr(0, key));
    };
    return isFinished && std::all_of(records.begin(), records.end(), isGood) &&
           source.find('\0') == source.npos && source.find("\xEF\xBB\xBF") != 0;
}

int build(const std::string& text, const char* image, const DictionaryBuildOptions& options,
          DictionaryBuildReport* report) {
    DictionarySource source = {};
    source.size = sizeof source;
    source.bytes = {text.data(), text.size()};
    const DictionaryTarget target = {sizeof target, image, nullptr};
    return dictionaryBuildFrom(&source, &target, &options, report, nullptr);
}

// Checks a source. Returns DICTIONARY_OK if an image can be made of it.
int check(const std::string& source, const Separators& separators, bool lenient) {
    Reported reported;
    const DictionaryBuildOptions options = optionsFor(separators, lenient, reported);
    DictionaryBuildReport report = {};
    report.size = sizeof report;
    const int result = build(source, nullptr, options, &report);
    require(std::is_sorted(reported.places.begin(), reported.places.end()),
            "problems come in order");
    require(reported.places.size() == report.problems, "problems are counted");
    require(reported.places.empty() || reported.places.back().first <= report.records,
            "problems are those of records");
    require((result == DICTIONARY_OK) == (reported.worst == DICTIONARY_WARNING),
            "an error decides");
    return result;
}

// Whether the plain build takes all keys. It refuses keys with a character of four bytes.
bool isPlain(const std::string& source) {
    return source.find_first_of("\xF0\xF1\xF2\xF3\xF4") == source.npos;
}

void requireSameImage(const std::string& text, const Separators& separators) {
    const TemporaryFile source(text), image, plainImage;
    Reported reported;
    const DictionaryBuildOptions options = optionsFor(separators, true, reported);
    require(build(text, image.path(), options, nullptr) == DICTIONARY_OK,
            "a build ends as the check did");
    if (!isPlain(text)) return;
    int result = 0;
    printedBy([&] {
        const SourceCloser closer;
        Dictionary::CDictionayApp app;
        result = app.buildDic(source.path(), separators.field, separators.record);
        app.writeBinaryDic(plainImage.path());
    });
    require(result == 1, "the plain build takes what the check takes");
    require(image.content() == plainImage.content(), "both builds make one image");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const Separators& separators = kSeparators[input.below(std::size(kSeparators))];
    const bool alsoBuild = input.below(kBuilds) == 0;
    const std::string source = input.rest();
    const int strict = check(source, separators, false);
    const int lenient = check(source, separators, true);
    require((strict == DICTIONARY_OK) == isSound(source, separators), "errors are found");
    require(strict != DICTIONARY_OK || lenient == DICTIONARY_OK,
            "what is good enough for the strict check is for the other");
    if (alsoBuild && lenient == DICTIONARY_OK) requireSameImage(source, separators);
    return 0;
}
