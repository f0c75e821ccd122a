// What the options of a search cost, beside the plain search, over the real dictionaries. A row is
// named MODE/DICTIONARY/OPTION; its items are lines of the text, its bytes those of the text.
//
//   options_bench [Google Benchmark's options] [DATA FOLDER]

#include <benchmark/benchmark.h>

#include <map>
#include <memory>

#include "Dictionary.h"
#include "Material.h"

namespace {

using namespace Bench;

constexpr const char* kDictionaries[] = {"chinese", "japanese", "english", "mixed"};

std::string g_data = "build/bench-data";

using Handle = std::unique_ptr<DictionaryHandle, decltype(&dictionaryClose)>;

Handle opened(const std::string& records, bool folded) {
    DictionarySource source = {};
    source.size = sizeof source;
    source.bytes = {records.data(), records.size()};
    DictionaryImageBuffer image = {};
    const DictionaryTarget target = {sizeof target, nullptr, &image};
    DictionaryBuildOptions options = {};
    options.size = sizeof options;
    options.folded = folded;
    DictionaryError error;
    if (dictionaryBuildFrom(&source, &target, &options, nullptr, &error) != DICTIONARY_OK) {
        fail(error.text);
    }
    const DictionaryText bytes = {image.bytes, image.size};
    Handle handle(dictionaryOpenBytes(bytes, DICTIONARY_OPEN_COPY, &error), dictionaryClose);
    dictionaryFreeBuffer(&image);
    if (handle == nullptr) fail(error.text);
    return handle;
}

// Every n-th line of a source.
std::string part(const std::string& records, std::size_t every, std::size_t first) {
    std::string lines;
    std::size_t number = 0;
    for (std::size_t start = 0, end; start < records.size(); start = end) {
        end = records.find('\n', start) + 1;
        if (number++ % every == first) lines.append(records, start, end - start);
    }
    return lines;
}

// A dictionary in all its forms, and its text.
class Subject {
public:
    explicit Subject(const std::string& base)
        : m_source(readFile(base + ".tsv")),
          plain(opened(m_source, false)),
          folded(opened(m_source, true)),
          small(opened(part(m_source, 100, 0), false)) {
        const DictionaryHandle* const images[] = {plain.get(), small.get()};
        both.reset(dictionaryOpenSet(images, 2, nullptr));
        lines = Material(base).lines;
        for (const std::string& line : lines) {
            texts.push_back({line.data(), line.size()});
            bytes += line.size();
        }
    }

private:
    std::string m_source;

public:
    Handle plain;
    Handle folded;
    Handle small;  // a hundredth of the keys, as a user's own may be
    Handle both{nullptr, dictionaryClose};
    Texts lines;
    std::vector<DictionaryText> texts;
    std::size_t bytes = 0;
};

const Subject& subjectOf(const std::string& dictionary) {
    static std::map<std::string, Subject> subjects;
    return subjects.try_emplace(dictionary, g_data + "/" + dictionary).first->second;
}

struct Option {
    const char* name;
    Handle Subject::*handle;
    bool wholeWords;
};

constexpr Option kOptions[] = {{"plain", &Subject::plain, false},
                               {"whole-words", &Subject::plain, true},
                               {"folded", &Subject::folded, false},
                               {"small-alone", &Subject::small, false},
                               {"set", &Subject::both, false}};

struct Mode {
    const char* name;
    int mode;
};

constexpr Mode kModes[] = {{"all", DICTIONARY_FIND_ALL},
                           {"longest", DICTIONARY_FIND_LONGEST},
                           {"segment", DICTIONARY_FIND_SEGMENT}};

DictionaryFindOptions findOptions(int mode, bool wholeWords) {
    DictionaryFindOptions options = {};
    options.size = sizeof options;
    options.mode = mode;
    options.wholeWords = wholeWords;
    return options;
}

void countVolume(benchmark::State& state, const Subject& subject, std::size_t matches) {
    const auto texts = static_cast<std::int64_t>(subject.texts.size());
    state.SetItemsProcessed(state.iterations() * texts);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(subject.bytes));
    state.counters["matches"] = static_cast<double>(matches);
}

void measureMatches(benchmark::State& state, const std::string& dictionary, int mode,
                    const Option& option) {
    const Subject& subject = subjectOf(dictionary);
    const DictionaryFindOptions options = findOptions(mode, option.wholeWords);
    const DictionaryHandle* const handle = (subject.*option.handle).get();
    DictionaryMatches matches = {};
    std::size_t count = 0;
    for (auto _ : state) {
        count = 0;
        for (const DictionaryText& text : subject.texts) {
            dictionaryFindMatches(handle, &options, text, &matches, nullptr);
            count += matches.count;
        }
    }
    dictionaryFreeMatches(&matches);
    countVolume(state, subject, count);
}

// To compare with the columns: the matches of all texts in one list.
void measureManyTexts(benchmark::State& state, const std::string& dictionary, int mode) {
    const Subject& subject = subjectOf(dictionary);
    const DictionaryFindOptions options = findOptions(mode, false);
    DictionaryMatches matches = {};
    std::vector<std::size_t> ends(subject.texts.size());
    for (auto _ : state) {
        dictionaryFindInTexts(subject.plain.get(), &options, subject.texts.data(),
                              subject.texts.size(), &matches, ends.data(), nullptr);
    }
    countVolume(state, subject, matches.count);
    dictionaryFreeMatches(&matches);
}

void measureColumns(benchmark::State& state, const std::string& dictionary, int mode) {
    const Subject& subject = subjectOf(dictionary);
    const DictionaryFindOptions options = findOptions(mode, false);
    DictionaryColumns columns = {};
    for (auto _ : state) {
        dictionaryFindColumns(subject.plain.get(), &options, subject.texts.data(),
                              subject.texts.size(), &columns, nullptr);
    }
    countVolume(state, subject, columns.count);
    dictionaryFreeColumns(&columns);
}

void addRows(const Mode& mode, const std::string& dictionary) {
    const std::string beginning = std::string(mode.name) + "/" + dictionary + "/";
    for (const Option& option : kOptions) {
        const auto run = [=](benchmark::State& state) {
            measureMatches(state, dictionary, mode.mode, option);
        };
        benchmark::RegisterBenchmark((beginning + option.name).c_str(), run)
            ->Unit(benchmark::kMillisecond);
    }
    const std::pair<const char*, decltype(&measureColumns)> manyAtOnce[] = {
        {"many-texts", measureManyTexts}, {"columns", measureColumns}};
    for (const auto& [name, measure] : manyAtOnce) {
        const auto run = [=, measure = measure](benchmark::State& state) {
            measure(state, dictionary, mode.mode);
        };
        benchmark::RegisterBenchmark((beginning + name).c_str(), run)
            ->Unit(benchmark::kMillisecond);
    }
}

}  // namespace

int main(int count, char** arguments) {
    for (const Mode& mode : kModes) {
        for (const char* dictionary : kDictionaries) addRows(mode, dictionary);
    }
    benchmark::Initialize(&count, arguments);
    if (count > 1) g_data = arguments[1];
    benchmark::RunSpecifiedBenchmarks();
}
