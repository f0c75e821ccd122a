#include "CheckedBuild.h"

#include <algorithm>
#include <chrono>

#include "CellPieces.h"
#include "ImageFormat.h"
#include "SourceKeys.h"
#include "StringUtil.h"
#include "UTF8Coder.h"

namespace Dictionary {

namespace {

constexpr char kDataSeparator[] = "\t";

// Reports how placement goes on every so many passing keys, and often enough to be stopped soon.
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

// Writes an image, or hands it to the host, and tells how that goes on.
class ImageWriter {
public:
    // `file` is null for the host.
    ImageWriter(ImageFile* file, const BuildCallbacks& callbacks)
        : m_file(file), m_callbacks(callbacks) {}

    void expect(std::uint64_t total) { m_total = total; }

    void write(const char* bytes, std::size_t size) {
        while (size > 0) {
            tell();
            const std::size_t piece = std::min(size, kStep - m_done % kStep);
            writePiece(bytes, piece);
            m_done += piece;
            bytes += piece;
            size -= piece;
        }
    }

    // Puts the complete image into its place, unless the host stops at the last moment.
    void finish() {
        m_callbacks.progress(DICTIONARY_STAGE_WRITE, m_done, m_total);
        if (m_file != nullptr) m_file->commit();
    }

    std::uint64_t total() const { return m_total; }

private:
    void writePiece(const char* bytes, std::size_t size) {
        if (m_file == nullptr) {
            m_callbacks.image(bytes, size);
        } else {
            m_file->write(bytes, size);
        }
    }

    void tell() {
        if (m_done < m_next) return;
        m_next = m_done + kStep;
        m_callbacks.progress(DICTIONARY_STAGE_WRITE, m_done, m_total);
    }

    static constexpr std::size_t kStep = kPieceBytes;

    ImageFile* m_file;
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

CheckedBuild::CheckedBuild(const DictionaryBuildOptions& options, const BuildCallbacks& callbacks,
                           ProblemLog& log, DictionaryBuildReport& report)
    : m_callbacks(callbacks),
      m_log(log),
      m_report(report),
      m_fieldSeparator(separatorOr(options.fieldSeparator, "\t")),
      m_recordSeparator(separatorOr(options.recordSeparator, "\n")),
      m_windows(options.windows),
      m_allowEmpty(options.allowEmpty),
      m_check(m_recordSeparator == "\n"),
      m_builder(CUTF8Coder().getNumOfSingleWord()) {}

void CheckedBuild::run(SourceText& source, const char* imageName) {
    if (!checkSeparators()) return;
    // Who names a place where no image can stand learns it before all the work.
    std::optional<ImageFile> image;
    if (imageName != nullptr) image.emplace(imageName);
    const bool builds = image.has_value() || m_callbacks.takesImage();
    if (builds) {
        m_table.emplace();
    } else {
        m_check.lookForJoins(m_fieldSeparator);
    }
    source.open();
    if (image.has_value() && image->replaces(source.file())) {
        m_log.add(DICTIONARY_PROBLEM_SAME_FILE);
        return;
    }
    read(source);
    if (!builds || m_log.hasErrors()) return;
    m_table->arrange();
    if (dataFits() && place()) {
        write(image.has_value() ? &*image : nullptr);
    } else {
        m_log.add(DICTIONARY_PROBLEM_IMAGE_TOO_LARGE);
    }
}

bool CheckedBuild::checkSeparators() {
    for (const std::string* separator : {&m_fieldSeparator, &m_recordSeparator}) {
        if (!isSeparator(*separator)) m_log.add(DICTIONARY_PROBLEM_BAD_SEPARATOR);
    }
    return !m_log.hasErrors();
}

void CheckedBuild::read(SourceText& source) {
    source.whileWaiting([&] { tellReading(source); });
    SourceRecords records(source, m_recordSeparator);
    const char* const foreign = foreignKind(records.beginning());
    if (foreign != nullptr) return m_log.addInWords(DICTIONARY_PROBLEM_NOT_TEXT, foreign);
    SourceRecord record;
    std::uint64_t told = 0;
    while (records.next(record)) {
        if (source.position() != told) tellReading(source);
        told = source.position();
        take(record);
    }
    m_sourceBytes = source.position();
    m_callbacks.progress(DICTIONARY_STAGE_READ, m_sourceBytes, m_sourceBytes);
    if (m_report.records == 0 && !m_allowEmpty) m_log.add(DICTIONARY_PROBLEM_NO_RECORDS);
}

void CheckedBuild::tellReading(const SourceText& source) const {
    const std::uint64_t done = source.position();
    if (done > 0 && done == source.size()) return;
    // A file that has grown since is of no known size.
    const std::uint64_t total = done < source.size() ? source.size() : 0;
    m_callbacks.progress(DICTIONARY_STAGE_READ, done, total);
}

void CheckedBuild::take(SourceRecord& record) {
    ++m_report.records;
    if (m_windows) m_check.takeOffWindowsMarks(record);
    const std::string_view text = record.text;
    const std::size_t keySize = text.find(m_fieldSeparator);
    const bool isRefused = tellFindings(record, keySize);
    if (m_log.hasErrors()) m_table.reset();
    if (isRefused) {
        m_refused.add(text.substr(0, keySize));
        m_report.refused = m_refused.size();
    } else if (m_table.has_value()) {
        cutFields(text, keySize);
        m_table->add(m_fields);
    }
}

// Whether the record's key is refused.
bool CheckedBuild::tellFindings(const SourceRecord& record, std::size_t keySize) {
    bool isRefused = false;
    for (const Finding& finding : m_check.examine(record, keySize)) {
        m_log.add(finding.code, record.number, record.skipped + finding.column);
        if (finding.code == DICTIONARY_PROBLEM_BEYOND_BMP) isRefused = true;
    }
    return isRefused;
}

// Cuts a record into fields, or into what comes to the same: in an image tabs stand between them,
// and where these are there already, nothing is to be cut.
void CheckedBuild::cutFields(std::string_view text, std::size_t keySize) {
    m_fields.assign(1, text.substr(0, keySize));
    std::string_view data = text.substr(keySize + m_fieldSeparator.size());
    const bool tabsStand = m_fieldSeparator == kDataSeparator;
    for (std::size_t end; !tabsStand && (end = data.find(m_fieldSeparator)) != data.npos;) {
        m_fields.push_back(data.substr(0, end));
        data.remove_prefix(end + m_fieldSeparator.size());
    }
    m_fields.push_back(data);
}

// Whether no key has more data than an image has room for; behind this, lengths have 32 bits.
bool CheckedBuild::dataFits() const {
    // A record's data is at most as long as the record, with a byte for joining it.
    constexpr auto kRoom = static_cast<std::uint64_t>(kMaxImageBytes);
    if (m_sourceBytes + m_report.records <= kRoom) return true;
    bool fits = true;
    m_table->forEachKey([&](std::uint32_t key) {
        if (m_table->data(key).size() > kRoom) fits = false;
    });
    return fits;
}

// False when the image would be too large.
bool CheckedBuild::place() {
    CUTF8Coder coder;
    m_builder.expectOneBuild();
    // The table holds no key that the coder refuses.
    addKeysOf(*m_table, coder, m_builder, [](const std::string&) {});
    m_table.reset();
    m_builder.storeFeatures();
    m_builder.makeTrie();
    PlacementProgress progress(m_callbacks);
    if (m_builder.place(progress) == Placement::kNoRoom) return false;
    const std::uint64_t total = m_builder.totalPassing();
    m_callbacks.progress(DICTIONARY_STAGE_PLACE, total, total);
    return true;
}

void CheckedBuild::write(ImageFile* image) {
    if (image != nullptr) image->create();
    ImageWriter writer(image, m_callbacks);
    m_builder.writeImage(
        [&](std::int32_t total) { writer.expect(static_cast<std::uint64_t>(total)); },
        [&](const char* bytes, std::size_t size) { writer.write(bytes, size); });
    writer.finish();
    m_report.keys = countKeys();
    m_report.imageBytes = writer.total();
}

// Keys that are cut off may be one key in the image, and an empty one is none.
std::uint64_t CheckedBuild::countKeys() const {
    const CellArray& cells = m_builder.cells();
    std::uint64_t count = 0;
    for (std::int64_t i = 0; i <= cells.highest(); ++i) count += endsKey(cells.cellAt(i));
    return count;
}

}  // namespace Dictionary
