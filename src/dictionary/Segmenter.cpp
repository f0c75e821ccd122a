// The functions of Dictionary.h that make segmenters.

#include "Segmenter.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "DataField.h"
#include "Errors.h"
#include "EscapedLine.h"
#include "Handle.h"
#include "KeyLabels.h"
#include "ReadStruct.h"
#include "Walk.h"

namespace Dictionary {

namespace {

// How many labels lead to `cell`, which must be a node of a sound image.
std::size_t labelsTo(const CellView& cells, std::int32_t cell) {
    std::size_t labels = 0;
    for (; cell != kRootCheck; cell = cells.checkOf(static_cast<std::uint32_t>(cell))) ++labels;
    return labels;
}

// The weights of one image's keys, read from a field of their data.
class WeightReader {
public:
    // Sets every weight to the number in the field.
    WeightReader(WeightedImage& weighted, const DictionarySegmenterOptions& options,
                 std::optional<std::int64_t> numberInSet)
        : m_image(weighted.image),
          m_numberInSet(numberInSet),
          m_options(options),
          m_field(options.field == 0 ? 1 : options.field),
          m_weights(weighted.weights),
          m_longestKey(weighted.longestKey),
          m_keys(m_weights.numbers().count()) {
        countKeys();
        readNumbers();
    }

    const CellView& cells() const { return m_image.cells(); }

    // Leaves a key with that feature out of the sum.
    void leaveOut(std::int32_t feature) { --m_keys[m_weights.numbers().of(feature)]; }

    // The sum of all keys' weights.
    double sum() const {
        double sum = 0;
        for (std::size_t i = 0; i < m_keys.size(); ++i) sum += m_keys[i] * m_weights.values()[i];
        return sum;
    }

private:
    void countKeys();
    void readNumbers();
    double numberOf(std::int32_t feature) const;
    bool isWeight(double number) const {
        const bool isCount = m_options.weights == DICTIONARY_WEIGHTS_COUNTS;
        return std::isfinite(number) && (!isCount || number >= 1);
    }
    [[noreturn]] void refuseKeyOf(std::int32_t feature, int code, std::string_view value) const;
    [[noreturn]] void refuse(std::int32_t cell, int code, std::string_view value) const;

    const ImageView& m_image;
    const std::optional<std::int64_t> m_numberInSet;
    const DictionarySegmenterOptions& m_options;
    const unsigned m_field;
    Weights& m_weights;
    std::size_t& m_longestKey;
    std::vector<std::uint32_t> m_keys;  // how many keys have each data text, by its number
};

void WeightReader::countKeys() {
    forEachKeyCell(cells(), [&](std::int32_t cell, std::int32_t feature) {
        if (feature < 0) refuse(cell, DICTIONARY_NO_WEIGHT, {});
        ++m_keys[m_weights.numbers().of(feature)];
        m_longestKey = std::max(m_longestKey, labelsTo(cells(), cell));
    });
}

void WeightReader::readNumbers() {
    std::size_t number = 0;
    forEachRecord(m_image.featureArea(), [&](std::size_t offset, std::size_t) {
        const bool isUsed = m_keys[number] > 0;
        if (isUsed) m_weights.values()[number] = numberOf(static_cast<std::int32_t>(offset));
        ++number;
    });
}

double WeightReader::numberOf(std::int32_t feature) const {
    const std::optional<std::string_view> field =
        fieldOfFirstRecord(m_image.featureText(feature), m_field);
    if (!field) refuseKeyOf(feature, DICTIONARY_NO_WEIGHT, {});
    double number = 0;
    const char* const end = field->data() + field->size();
    const std::from_chars_result result = std::from_chars(field->data(), end, number);
    const bool isNumber = result.ec == std::errc() && result.ptr == end;
    if (!isNumber || !isWeight(number)) refuseKeyOf(feature, DICTIONARY_BAD_WEIGHT, *field);
    return number;
}

void WeightReader::refuseKeyOf(std::int32_t feature, int code, std::string_view value) const {
    forEachKeyCell(cells(), [&](std::int32_t cell, std::int32_t of) {
        if (of == feature) refuse(cell, code, value);
    });
    throw Failure{errorOf(code)};
}

// The text; if it is long, only whole characters at its beginning.
std::string_view shown(std::string_view text) {
    constexpr std::size_t kShown = 80;
    if (text.size() <= kShown) return text;
    const auto pass = [](std::int32_t, std::size_t, std::uint32_t) {};
    return text.substr(0, decodeUtf8(text.data(), kShown, pass));
}

void WeightReader::refuse(std::int32_t cell, int code, std::string_view value) const {
    KeyLabels labels;
    labels.climb(cells(), cell);
    const std::string key = labels.text();
    DictionaryError error = errorOf(code);
    EscapedLine line(error.text, sizeof error.text);
    line.add("the key \"");
    line.addEscaped(shown(key));
    line.add("\"");
    if (m_numberInSet) line.addNumber(" of image ", *m_numberInSet);
    if (code == DICTIONARY_NO_WEIGHT) {
        line.addNumber(" has no field ", m_field);
    } else {
        line.add(" has \"");
        line.addEscaped(shown(value));
        line.addNumber("\" in field ", m_field);
        const bool isCount = m_options.weights == DICTIONARY_WEIGHTS_COUNTS;
        line.add(isCount ? ", which is not a number of 1 or more" : ", which is not a number");
    }
    line.finish();
    error.file = DICTIONARY_FILE_IMAGE;
    error.cell = cell;
    throw Failure{error};
}

using Readers = std::vector<WeightReader>;

// Leaves the key out of the sum of the last image before number `later` that has it.
void leaveOutHidden(const KeyLabels& key, std::size_t later, Readers& readers) {
    for (std::size_t i = later; i-- > 0;) {
        bool isKey = false;
        findWholeKey(readers[i].cells(), key, kNoAlphabet, [&](std::int32_t feature) {
            readers[i].leaveOut(feature);
            isKey = true;
        });
        if (isKey) return;
    }
}

// In a set, a key of several images counts once, with the weight in the last of them.
void leaveOutHidden(Readers& readers) {
    KeyLabels key;
    for (std::size_t later = 1; later < readers.size(); ++later) {
        const CellView& cells = readers[later].cells();
        forEachKeyCell(cells, [&](std::int32_t cell, std::int32_t) {
            key.climb(cells, cell);
            leaveOutHidden(key, later, readers);
        });
    }
}

template <class Change>
void changeWeights(WeightedImages& weighted, Change change) {
    for (WeightedImage& one : weighted.images) {
        for (double& weight : one.weights.values()) weight = change(weight);
        one.weights.pack(one.image.featureArea());
    }
}

void weighCounts(WeightedImages& weighted, double total) {
    const double logTotal = std::log(total);
    changeWeights(weighted, [=](double count) { return std::log(count) - logTotal; });
    weighted.unknownWeight = std::log(1.0) - logTotal;
}

void weighCosts(WeightedImages& weighted, double unknownCost) {
    changeWeights(weighted, [](double cost) { return -cost; });
    weighted.unknownWeight = -unknownCost;
}

WeightedImages weigh(const DictionaryHandle& handle, const DictionarySegmenterOptions& options) {
    WeightedImages weighted;
    for (const auto& image : handle.images) {
        weighted.images.push_back({image->view(), image->isFolded(), Weights(image->view())});
    }
    Readers readers;
    for (WeightedImage& one : weighted.images) {
        const std::optional<std::int64_t> number(readers.size());
        readers.emplace_back(one, options, handle.isSet ? number : std::nullopt);
    }
    if (options.weights == DICTIONARY_WEIGHTS_COSTS) {
        weighCosts(weighted, options.unknownCost);
        return weighted;
    }
    leaveOutHidden(readers);
    const auto add = [](double sum, const WeightReader& reader) { return sum + reader.sum(); };
    weighCounts(weighted, std::accumulate(readers.begin(), readers.end(), 0.0, add));
    return weighted;
}

DictionarySegmenterOptions readOptions(const DictionarySegmenterOptions* options) {
    const DictionarySegmenterOptions read =
        readStruct(options, "the options' size is not sizeof(DictionarySegmenterOptions)");
    requireArgument(
        read.weights == DICTIONARY_WEIGHTS_COUNTS || read.weights == DICTIONARY_WEIGHTS_COSTS,
        "the weights are not one of DictionaryWeights");
    requireArgument(std::isfinite(read.unknownCost),
                    "the cost of unknown characters is not a number");
    return read;
}

}  // namespace

}  // namespace Dictionary

using namespace Dictionary;

DictionarySegmenter* dictionaryMakeSegmenter(const DictionaryHandle* handle,
                                             const DictionarySegmenterOptions* options,
                                             DictionaryError* error) {
    DictionarySegmenter* segmenter = nullptr;
    guarded(error, [&] {
        requireArgument(handle != nullptr, "the handle is null");
        segmenter = new DictionarySegmenter{handle, weigh(*handle, readOptions(options))};
    });
    return segmenter;
}

void dictionaryFreeSegmenter(DictionarySegmenter* segmenter) {
    delete segmenter;
}
