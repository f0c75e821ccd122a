// Segmentation by weight beside segmentation by longest match, and replacement beside opencc's,
// over the Chinese dictionary and text. A row has what was done, and how many megabytes of text per
// second. The first two rows have the milliseconds and the bytes that a segmenter takes.
//
//   segment_bench [DATA FOLDER]

#include <malloc.h>
#include <opencc/opencc.h>

#include <algorithm>
#include <chrono>
#include <functional>

#include "Dictionary.h"
#include "Library.h"
#include "Material.h"

namespace {

using namespace Bench;

constexpr int kRuns = 5;

double secondsOf(const std::function<void()>& job) {
    const auto start = std::chrono::steady_clock::now();
    job();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double medianOf(const std::function<void()>& job) {
    std::vector<double> seconds;
    for (int i = 0; i < kRuns; ++i) seconds.push_back(secondsOf(job));
    std::nth_element(seconds.begin(), seconds.begin() + kRuns / 2, seconds.end());
    return seconds[kRuns / 2];
}

void row(const std::string& what, double figure) {
    std::printf("%s\t%.6g\n", what.c_str(), figure);
}

void require(bool isRight, const char* otherwise) {
    if (!isRight) fail(otherwise);
}

class Image {
public:
    explicit Image(const std::string& base) {
        Library::buildFile(base + ".tsv", base + ".library");
        m_handle = dictionaryOpenFile((base + ".library").c_str(), DICTIONARY_OPEN_MAP, nullptr);
        require(m_handle != nullptr, "the image does not open");
    }
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;
    ~Image() { dictionaryClose(m_handle); }

    const DictionaryHandle* get() const { return m_handle; }

private:
    DictionaryHandle* m_handle;
};

std::vector<DictionaryText> viewsOf(const Texts& texts) {
    std::vector<DictionaryText> views;
    for (const std::string& text : texts) views.push_back({text.data(), text.size()});
    return views;
}

// How fast the texts are segmented, in megabytes per second.
double segment(const Image& image, int mode, const DictionarySegmenter* segmenter,
               const Material& material) {
    DictionaryFindOptions options = {};
    options.size = sizeof options;
    options.mode = mode;
    options.segmenter = segmenter;
    const std::vector<DictionaryText> texts = viewsOf(material.lines);
    std::vector<std::size_t> ends(texts.size());
    DictionaryMatches matches = {};
    const double seconds = medianOf([&] {
        const int code = dictionaryFindInTexts(image.get(), &options, texts.data(), texts.size(),
                                               &matches, ends.data(), nullptr);
        require(code == DICTIONARY_OK && matches.count > texts.size(), "nothing is segmented");
    });
    dictionaryFreeMatches(&matches);
    return static_cast<double>(material.whole.front().size()) / seconds / 1e6;
}

std::size_t memoryInUse() {
    return mallinfo2().uordblks + mallinfo2().hblkhd;
}

void segmentations(const std::string& data, const Material& material) {
    const Image image(data + "/chinese");
    const DictionarySegmenterOptions counts = {sizeof counts, DICTIONARY_WEIGHTS_COUNTS, 1, 0};
    const std::size_t before = memoryInUse();
    DictionarySegmenter* const segmenter = dictionaryMakeSegmenter(image.get(), &counts, nullptr);
    require(segmenter != nullptr, "there is a key without a count");
    row("segmenter-bytes", static_cast<double>(memoryInUse() - before));
    row("segmenter-ms",
        1e3 * medianOf([&] {
            dictionaryFreeSegmenter(dictionaryMakeSegmenter(image.get(), &counts, nullptr));
        }));
    row("segment-longest", segment(image, DICTIONARY_FIND_SEGMENT, nullptr, material));
    row("segment-by-weight", segment(image, DICTIONARY_FIND_WEIGHTED, segmenter, material));
    dictionaryFreeSegmenter(segmenter);
}

std::string replaced(const Image& image, const std::string& text) {
    static DictionaryReplacement result = {};
    const DictionaryReplaceOptions options = {sizeof options, 1, " ", false, false};
    const int code = dictionaryReplaceKeys(image.get(), nullptr, &options,
                                           {text.data(), text.size()}, &result, nullptr);
    require(code == DICTIONARY_OK, "nothing is replaced");
    return {result.bytes, result.size};
}

std::string converted(opencc_t converter, const std::string& text) {
    char* const bytes = opencc_convert_utf8(converter, text.data(), text.size());
    const std::string result = bytes;
    opencc_convert_utf8_free(bytes);
    return result;
}

// How fast the lines are converted, in megabytes per second. All ways must have the same results.
template <class Convert>
double speedOf(const Texts& lines, Texts& results, const Convert& convert) {
    Texts written(lines.size());
    const double seconds =
        medianOf([&] { std::transform(lines.begin(), lines.end(), written.begin(), convert); });
    require(results.empty() || results == written, "another result");
    results = written;
    std::size_t bytes = 0;
    for (const std::string& line : lines) bytes += line.size() + 1;
    return static_cast<double>(bytes) / seconds / 1e6;
}

// Returns the converted lines.
Texts replacements(const std::string& data, const std::string& direction, const Texts& lines) {
    const Image image(data + "/" + direction);
    opencc_t converter = opencc_open((direction + ".json").c_str());
    Texts results;
    row("replace-" + direction,
        speedOf(lines, results, [&](const std::string& line) { return replaced(image, line); }));
    row("opencc-" + direction, speedOf(lines, results, [&](const std::string& line) {
            return converted(converter, line);
        }));
    opencc_close(converter);
    return results;
}

}  // namespace

int main(int count, char** arguments) {
    const std::string data = count > 1 ? arguments[1] : "build/bench-data";
    const Material material(data + "/chinese");
    segmentations(data, material);
    const Texts traditional = replacements(data, "s2t", material.lines);
    replacements(data, "t2s", traditional);
}
