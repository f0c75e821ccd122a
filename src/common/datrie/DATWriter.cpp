#include "DATWriter.h"

#include <langinfo.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <iostream>
#include <iterator>
#include <string_view>

#include "ImageFormat.h"
#include "TrieBuilder.h"

namespace Dictionary {

namespace {

// The progress line on standard output. It ends in a carriage return, so that on a terminal each
// one overwrites the one before. There may be ten thousand lines a second, so they are flushed only
// as often as anyone could see.
class ProgressLine : public PlacementListener {
public:
    void pause(std::uint64_t, std::uint64_t) override {}

    void report(std::uint64_t running, std::uint64_t total) override {
        constexpr double kTicksPerSecond = 1000000.0;
        constexpr double kSecondsBetweenFlushes = 0.01;
        m_seconds = static_cast<double>(std::clock() - m_start) / kTicksPerSecond;
        // Kept: with no passing keys at all this is 0/0 and prints as a NaN.
        print(static_cast<float>(running) / static_cast<float>(total), total);
        if (m_seconds - m_flushed < kSecondsBetweenFlushes) return;
        std::fflush(stdout);
        m_flushed = m_seconds;
    }

    // Kept: the last line repeats the seconds of the one before it.
    void finish(std::uint64_t total) const {
        print(1, total);
        std::fflush(stdout);
        std::putchar('\n');
    }

private:
    // Prints what printf would for "percent :%.2f cost time: %f seconds ALL STATE: %d\r", but
    // faster.
    void print(float fraction, std::uint64_t total) const {
        constexpr int kFractionDigits = 2;
        constexpr int kSecondsDigits = 6;
        char line[256];
        char* out = append(line, "percent :");
        out = appendFixed(out, double{fraction}, kFractionDigits);
        out = append(out, " cost time: ");
        out = appendFixed(out, m_seconds, kSecondsDigits);
        out = append(out, " seconds ALL STATE: ");
        out = std::to_chars(out, std::end(line), static_cast<int>(total)).ptr;
        out = append(out, "\r");
        std::fwrite(line, 1, static_cast<std::size_t>(out - line), stdout);
    }

    // Uses the decimal separator of the locale.
    static char* appendFixed(char* out, double value, int digits) {
        char number[64];
        char* const end = std::to_chars(std::begin(number), std::end(number), value,
                                        std::chars_format::fixed, digits)
                              .ptr;
        char* const point = std::find(number, end, '.');
        out = std::copy(number, point, out);
        if (point == end) return out;
        return std::copy(point + 1, end, append(out, nl_langinfo(RADIXCHAR)));
    }

    static char* append(char* out, std::string_view text) {
        return std::copy(text.begin(), text.end(), out);
    }

    std::clock_t m_start = std::clock();
    double m_seconds = 0;
    double m_flushed = 0;
};

char* store(char* out, std::int32_t value) {
    std::memcpy(out, &value, sizeof value);
    return out + sizeof value;
}

// The codes that follow a node, each once.
std::vector<std::int32_t> labelsBelow(const KeyPool& keys, const SInnerDATWUnit& unit) {
    const auto next = static_cast<std::uint32_t>(unit.depth) + 1;
    std::set<std::int32_t> labels;
    for (const int key : unit.passingKeys) {
        labels.insert(keys[static_cast<std::uint32_t>(key)][next]);
    }
    return {labels.begin(), labels.end()};
}

// The codes on the way from the root to a cell.
std::vector<int> codesTo(const CellArray& cells, std::int64_t index) {
    std::vector<int> codes;
    for (Cell cell = cells.cellAt(index); cell.check != kRootCheck; cell = cells.cellAt(index)) {
        const Cell parent = cells.cellAt(cell.check);
        codes.push_back(static_cast<int>(index - childIndex(parent, 0)));
        index = cell.check;
    }
    codes.push_back(static_cast<int>(index));
    std::reverse(codes.begin(), codes.end());
    return codes;
}

std::string textOf(const std::vector<int>& codes, ICoderInterface& coder) {
    constexpr int kRoom = 9;
    std::string text;
    for (const int code : codes) {
        char character[kRoom + 1] = {};
        if (coder.decode(code, character, kRoom) > 0) text += character;
    }
    return text;
}

}  // namespace

CDATWriter::CDATWriter(ICoderInterface* coder, bool reverse)
    : m_coder(coder),
      m_builder(new TrieBuilder(coder == nullptr ? 0 : coder->getNumOfSingleWord())),
      m_imageSize(0),
      m_reverse(reverse) {}

CDATWriter::~CDATWriter() = default;

bool CDATWriter::addKeys(const char* key, std::string feature) {
    if (key == nullptr || m_coder == nullptr) return false;
    return m_builder->addKey(*m_coder, key, m_reverse, feature);
}

void CDATWriter::putFeature(std::string feature, int keyIndex) {
    m_builder->attachFeature(feature, keyIndex);
}

bool CDATWriter::buildDAT() {
    clear(false);
    writeFeature();
    buildPrefix();
    ProgressLine progress;
    switch (m_builder->place(progress)) {
        case Placement::kNothingToPlace:
            return false;
        case Placement::kNoRoom:
            std::fflush(stdout);
            std::cout << m_builder->runningCount() << "wrong !!!!!\n";
            return false;
        case Placement::kPlaced:
            break;
    }
    progress.finish(m_builder->totalPassing());
    return true;
}

// Cells take up storage only when they are used, so a final clear frees as much as any other.
void CDATWriter::clear(bool) {
    m_builder->clear();
}

int CDATWriter::writeFeature() {
    m_builder->storeFeatures();
    return 0;
}

void CDATWriter::buildPrefix() {
    m_builder->makeTrie();
}

bool CDATWriter::buildDATWUnit(SInnerDATWUnit* unit) {
    CellArray& cells = m_builder->cells();
    std::int64_t index = unit->prefix.front();
    for (std::size_t i = 1; i < unit->prefix.size(); ++i) {
        index = childIndex(cells.cellAt(index), unit->prefix[i]);
    }
    if (unit->depth == 0 && !cells.takeRoot(unit->prefix.front())) return false;
    if (!unit->endingKeys.empty()) {
        cells.markTerminal(index, *unit->endingKeys.begin(), unit->featureOffset);
    }
    if (unit->passingKeys.empty()) return true;

    const int base = getConsistentBasePos(unit);
    if (base < 0) return false;
    cells.setBase(index, base);
    for (const std::int32_t label : labelsBelow(m_builder->keys(), *unit)) {
        cells.takeChild(std::int64_t{base} + label, index);
    }
    return true;
}

int CDATWriter::getConsistentBasePos(SInnerDATWUnit* unit) {
    const KeyPool& keys = m_builder->keys();
    const KeyCodes firstKey = keys[static_cast<std::uint32_t>(*unit->passingKeys.begin())];
    const std::int32_t leading = firstKey[static_cast<std::uint32_t>(unit->depth) + 1];
    return static_cast<int>(m_builder->cells().findBase(leading, labelsBelow(keys, *unit)));
}

void CDATWriter::nextFreePos(int& position) {
    position = static_cast<int>(m_builder->cells().firstFreeFrom(position));
}

void CDATWriter::reallocBC(int size) {
    m_builder->cells().reserve(size);
}

// Kept: every call counts one cell more.
char* CDATWriter::write() {
    std::unique_ptr<char[]> image;
    char* out = nullptr;
    m_imageSize = m_builder->writeImage(
        [&](std::int32_t size) {
            image.reset(new char[static_cast<std::size_t>(size)]);
            out = image.get();
        },
        [&](const char* bytes, std::size_t size) { out = std::copy_n(bytes, size, out); });
    return image.release();
}

void* CDATWriter::write(void* output, bool withFeatures) {
    CellArray& cells = m_builder->cells();
    // Kept: every call counts one cell more.
    const std::int64_t count = cells.countOneMore();
    char* out = static_cast<char*>(output);
    for (std::int64_t i = 0; i < count; ++i) {
        const Cell cell = cells.cellAt(i);
        out = store(out, cell.base);
        // Kept: the caller's word for the check of a free cell is not written.
        out = cell.check == kFreeCheck ? out + sizeof cell.check : store(out, cell.check);
        if (withFeatures) out = store(out, cell.feature);
    }
    return out;
}

int CDATWriter::show(std::vector<std::pair<std::string, std::string> >& entries) {
    const CellArray& cells = m_builder->cells();
    int shown = 0;
    for (std::int64_t i = 0; i <= cells.highest(); ++i) {
        const Cell cell = cells.cellAt(i);
        if (!endsKey(cell)) continue;
        const std::string_view feature =
            featureTextAt(m_builder->featureArea().data(), cell.feature);
        entries.emplace_back(textOf(codesTo(cells, i), *m_coder), std::string(feature));
        ++shown;
    }
    return shown;
}

}  // namespace Dictionary
