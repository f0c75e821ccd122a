#include "ImageBuild.h"

#include <algorithm>
#include <chrono>

#include "CellPieces.h"
#include "Folding.h"
#include "ImageFormat.h"
#include "LabelCoder.h"
#include "StringUtil.h"
#include "Utf8Decoder.h"

namespace Dictionary {

namespace {

constexpr char kDataSeparator[] = "\t";

// Reports the progress of the placement, often enough for the caller to stop it soon.
class PlacementProgress : public PlacementListener {
public:
    explicit PlacementProgress(const BuildCallbacks& callbacks) : m_callbacks(callbacks) {}

    void pause(std::uint64_t running, std::uint64_t total) override {
        const Clock::time_point now = Clock::now();
        if ((running < m_next && now < m_nextTime) || running == total) return;
        m_next = running + kStep;
        m_nextTime = now + kTimeStep;
        m_callbacks.progress(DICTIONARY_STAGE_PLACE, running, total);
    }

    void report(std::uint64_t, std::uint64_t) override {}

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::uint64_t kStep = std::uint64_t{1} << 14;
    static constexpr std::chrono::milliseconds kTimeStep{50};

    const BuildCallbacks& m_callbacks;
    std::uint64_t m_next = 0;
    Clock::time_point m_nextTime;
};

// Writes an image and reports the progress.
class ImageWriter {
public:
    ImageWriter(ImageTarget& target, const BuildCallbacks& callbacks)
        : m_target(target), m_callbacks(callbacks) {}

    void begin(std::size_t total) {
        m_total = total;
        m_target.create(total);
    }

    void write(const char* bytes, std::size_t size) {
        while (size > 0) {
            report();
            const std::size_t piece = std::min(size, kStep - m_done % kStep);
            m_target.write(bytes, piece);
            m_done += piece;
            bytes += piece;
            size -= piece;
        }
    }

    // Puts the complete image into its place, unless the caller stops at the last moment.
    void finish() {
        m_callbacks.progress(DICTIONARY_STAGE_WRITE, m_done, m_total);
        m_target.commit();
    }

    std::uint64_t total() const { return m_total; }

private:
    void report() {
        if (m_done < m_next) return;
        m_next = m_done + kStep;
        m_callbacks.progress(DICTIONARY_STAGE_WRITE, m_done, m_total);
    }

    static constexpr std::size_t kStep = kPieceBytes;

    ImageTarget& m_target;
    const BuildCallbacks& m_callbacks;
    std::uint64_t m_total = 0;
    std::uint64_t m_done = 0;
    std::uint64_t m_next = 0;
};

std::string separatorOr(const char* notation, const char* otherwise) {
    return notation == nullptr ? otherwise : getEscapeSeparator(notation);
}

bool isSeparator(const std::string& text) {
    return !text.empty() && text.find('\0') == std::string::npos;
}

}  // namespace

ImageBuild::ImageBuild(const DictionaryBuildOptions& options, const BuildCallbacks& callbacks,
                       ProblemLog& log, DictionaryBuildReport& report, ImageTarget* target)
    : m_callbacks(callbacks),
      m_log(log),
      m_report(report),
      m_target(target),
      m_fieldSeparator(separatorOr(options.fieldSeparator, "\t")),
      m_recordSeparator(separatorOr(options.recordSeparator, "\n")),
      m_fromWindows(options.fromWindows),
      m_allowEmpty(options.allowEmpty),
      m_isFolded(options.folded),
      m_check(m_recordSeparator == "\n"),
      m_builder(kBmpEnd) {}

void ImageBuild::run(SourceText& source) {
    if (!checkSeparators()) return;
    beginReading();
    source.open();
    if (m_target != nullptr && m_target->replaces(source.file())) {
        return m_log.addOfImage(errorOf(DICTIONARY_SAME_FILE));
    }
    read(source);
    build();
}

void ImageBuild::run(SourceItems& items) {
    constexpr std::uint64_t kStep = 4096;
    m_fieldSeparator = SourceItems::kFieldSeparator;
    m_check = SourceCheck(false);
    m_hasItems = true;
    beginReading();
    SourceRecord record;
    while (items.next(record)) {
        if (record.number % kStep == 1) {
            m_callbacks.progress(DICTIONARY_STAGE_READ, record.number - 1, 0);
        }
        for (const std::uint64_t column : items.strayTabs()) {
            report(DICTIONARY_BAD_SEPARATOR, record.number, column);
        }
        take(record);
    }
    endReading(record.number);
    build();
}

// Reports a problem of the source. Numbers count from 1; 0 means none.
void ImageBuild::report(int code, std::uint64_t number, std::uint64_t column) {
    const char* const words = m_hasItems ? wordsForItem(code) : nullptr;
    DictionaryError problem = words == nullptr ? errorOf(code) : errorOf(code, words);
    problem.line = number;
    problem.column = column;
    m_log.addOfSource(problem);
}

bool ImageBuild::checkSeparators() {
    for (const std::string* separator : {&m_fieldSeparator, &m_recordSeparator}) {
        if (!isSeparator(*separator)) m_log.add(errorOf(DICTIONARY_BAD_SEPARATOR));
    }
    return !m_log.hasErrors();
}

void ImageBuild::beginReading() {
    if (m_target != nullptr) {
        m_table.emplace();
    } else {
        m_check.lookForJoins(m_fieldSeparator);
    }
}

void ImageBuild::read(SourceText& source) {
    source.whileWaiting([&] { reportReading(source); });
    SourceRecords records(source, m_recordSeparator);
    const char* const foreign = foreignKind(records.beginning());
    if (foreign != nullptr) return m_log.addOfSource(errorOf(DICTIONARY_NOT_TEXT, foreign));
    readRecords(source, records);
    endReading(source.position());
}

void ImageBuild::readRecords(SourceText& source, SourceRecords& records) {
    SourceRecord record;
    std::uint64_t reported = 0;
    while (records.next(record)) {
        if (source.position() != reported) reportReading(source);
        reported = source.position();
        if (m_fromWindows) m_check.takeOffWindowsMarks(record);
        take(record);
    }
}

void ImageBuild::reportReading(const SourceText& source) const {
    const std::uint64_t done = source.position();
    if (done > 0 && done == source.size()) return;
    // If the file has grown since it was opened, its size is not known.
    const std::uint64_t total = done < source.size() ? source.size() : 0;
    m_callbacks.progress(DICTIONARY_STAGE_READ, done, total);
}

void ImageBuild::endReading(std::uint64_t done) {
    m_callbacks.progress(DICTIONARY_STAGE_READ, done, done);
    if (m_report.records == 0 && !m_allowEmpty) report(DICTIONARY_NO_RECORDS);
}

void ImageBuild::take(SourceRecord& record) {
    ++m_report.records;
    m_sourceBytes += record.text.size();
    const std::size_t keySize = record.text.find(m_fieldSeparator);
    for (const Finding& finding : m_check.examine(record, keySize)) {
        report(finding.code, record.number, record.skipped + finding.column);
    }
    if (m_log.hasErrors()) m_table.reset();
    if (!m_table.has_value()) return;
    cutFields(record.text, keySize);
    m_table->add(m_fields);
}

// Cuts a record into its fields. An image separates them by tabs, so data that already has tabs
// need not be cut.
void ImageBuild::cutFields(std::string_view text, std::size_t keySize) {
    m_fields.assign(1, keyOf(text.substr(0, keySize)));
    std::string_view data = text.substr(keySize + m_fieldSeparator.size());
    const bool tabsStand = m_fieldSeparator == kDataSeparator;
    for (std::size_t end; !tabsStand && (end = data.find(m_fieldSeparator)) != data.npos;) {
        m_fields.push_back(data.substr(0, end));
        data.remove_prefix(end + m_fieldSeparator.size());
    }
    m_fields.push_back(data);
}

// The key as it goes into the table, valid until the next call.
std::string_view ImageBuild::keyOf(std::string_view text) {
    if (!m_isFolded) return text;
    foldUtf8(m_hasItems ? text : trieKeyOf(text), m_foldedKey);
    return m_foldedKey;
}

void ImageBuild::build() {
    if (m_target == nullptr || m_log.hasErrors()) return;
    m_table->arrange();
    if (dataFits() && place()) {
        write();
    } else {
        m_log.addOfImage(errorOf(DICTIONARY_IMAGE_TOO_LARGE));
    }
}

// Whether the data of every key has room in an image. Later stages count lengths in 32 bits.
bool ImageBuild::dataFits() const {
    // A record's data is no longer than the record and one byte that joins it.
    constexpr auto kRoom = static_cast<std::uint64_t>(kMaxImageBytes);
    if (m_sourceBytes + m_report.records <= kRoom) return true;
    bool fits = true;
    m_table->forEachKey([&](std::uint32_t key) {
        if (m_table->data(key).size() > kRoom) fits = false;
    });
    return fits;
}

// Returns false if the image would be too large.
bool ImageBuild::place() {
    m_builder.expectOneBuild();
    addKeys();
    m_table.reset();
    if (m_isFolded) m_builder.storeRecord(kFoldedMark);
    m_builder.storeFeatures();
    m_builder.makeTrie();
    PlacementProgress progress(m_callbacks);
    if (!m_builder.mayFit() || m_builder.place(progress) == Placement::kNoRoom) return false;
    const std::uint64_t total = m_builder.totalPassing();
    m_callbacks.progress(DICTIONARY_STAGE_PLACE, total, total);
    return true;
}

void ImageBuild::addKeys() {
    LabelCoder coder;
    const bool isLiteral = m_hasItems || m_isFolded;
    m_builder.reserve(m_table->keyCount(), m_table->keyBytes());
    std::string key;
    m_table->forEachKey([&](std::uint32_t record) {
        key = isLiteral ? m_table->key(record) : m_table->trieKey(record);
        m_builder.addKey(coder, key.c_str(), false, m_table->data(record));
    });
}

void ImageBuild::write() {
    ImageWriter writer(*m_target, m_callbacks);
    m_builder.writeImage([&](std::int32_t total) { writer.begin(static_cast<std::size_t>(total)); },
                         [&](const char* bytes, std::size_t size) { writer.write(bytes, size); });
    writer.finish();
    m_report.keys = countKeys();
    m_report.imageBytes = writer.total();
}

// Keys that were cut off may be equal in the image, and an empty key is not in it.
std::uint64_t ImageBuild::countKeys() const {
    const CellArray& cells = m_builder.cells();
    std::uint64_t count = 0;
    for (std::int64_t i = 0; i <= cells.highest(); ++i) count += endsKey(cells.cellAt(i));
    return count;
}

}  // namespace Dictionary
