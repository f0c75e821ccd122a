// The builds of DATChecked.h, until their last callers are gone.

#include <cxxabi.h>
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "CellPieces.h"
#include "DATChecked.h"
#include "ImageFile.h"
#include "ImageFormat.h"
#include "SourceKeys.h"
#include "SourceRecords.h"
#include "SourceTable.h"
#include "SourceText.h"
#include "StringTable.h"
#include "StringUtil.h"
#include "SystemFailure.h"
#include "TrieBuilder.h"
#include "UTF8Coder.h"
#include "Utf8Decoder.h"

namespace Dictionary::Former {

// Thrown when a callback says so, or throws itself.
struct BuildStopped {};

class BuildCallbacks {
public:
    explicit BuildCallbacks(const DictionaryBuildOptions& options)
        : m_onProblem(options.onProblem),
          m_onProgress(options.onProgress),
          m_onImage(options.onImage),
          m_context(options.context) {}

    void problem(const DictionaryProblem& problem) const {
        if (m_onProblem == nullptr) return;
        goOnIf([&] {
            m_onProblem(m_context, &problem);
            return true;
        });
    }

    void progress(int stage, std::uint64_t done, std::uint64_t total) const {
        if (m_onProgress == nullptr) return;
        goOnIf([&] { return m_onProgress(m_context, stage, done, total); });
    }

    bool takesImage() const { return m_onImage != nullptr; }
    void image(const char* bytes, std::size_t size) const {
        goOnIf([&] { return m_onImage(m_context, bytes, size); });
    }

private:
    // The end of a thread has no object, which sanitizers take for a fault.
    template <class Call>
    __attribute__((no_sanitize("null"))) static void goOnIf(Call call) {
        bool goOn = false;
        try {
            goOn = call();
        } catch (const abi::__forced_unwind&) {
            throw;  // the thread ends here
        } catch (...) {
            // No exception of the host passes through its own C calls.
        }
        if (!goOn) throw BuildStopped();
    }

    void (*m_onProblem)(void*, const DictionaryProblem*);
    bool (*m_onProgress)(void*, int, std::uint64_t, std::uint64_t);
    bool (*m_onImage)(void*, const void*, std::size_t);
    void* m_context;
};

}  // namespace Dictionary::Former

namespace Dictionary::Former {

const char* problemName(int code);

class ProblemLog {
public:
    ProblemLog(const DictionaryBuildOptions& options, const BuildCallbacks& callbacks);

    // Counts a problem, and tells it unless the limit is reached. Line and column count from 1; 0
    // where none is meant.
    void add(int code, std::uint64_t line = 0, std::uint64_t column = 0, int systemError = 0);
    // The same for a problem of the whole source that is told in other words than its code's.
    void addInWords(int code, const char* text);

    std::uint64_t count() const { return m_count; }
    bool hasErrors() const { return m_hasErrors; }

private:
    bool isTold(DictionarySeverity severity);
    DictionarySeverity severityOf(int code) const;
    void tell(DictionaryProblem problem) const;

    const BuildCallbacks& m_callbacks;
    std::uint64_t m_limit;
    bool m_lenient;
    std::uint64_t m_count = 0;
    bool m_hasErrors = false;
};

}  // namespace Dictionary::Former

namespace Dictionary::Former {

namespace {

constexpr unsigned kDefaultLimit = 100;

struct ProblemKind {
    const char* name;
    DictionarySeverity severity;
    DictionarySeverity lenientSeverity;
    const char* text;
    const char* advice;
};

// By code.
constexpr ProblemKind kKinds[] = {
    {"none", DICTIONARY_WARNING, DICTIONARY_WARNING, "nothing is wrong", "go on"},
    {"cannot-read", DICTIONARY_ERROR, DICTIONARY_ERROR, "the source cannot be read",
     "name a file or a pipe that can"},
    {"cannot-write", DICTIONARY_ERROR, DICTIONARY_ERROR, "the image cannot be written",
     "what stood under its name stands there still"},
    {"no-memory", DICTIONARY_ERROR, DICTIONARY_ERROR, "there is not enough memory",
     "free some or divide the source"},
    {"bad-separator", DICTIONARY_ERROR, DICTIONARY_ERROR,
     "a separator is empty or holds a NUL byte", "give one of other bytes"},
    {"no-field", DICTIONARY_ERROR, DICTIONARY_ERROR, "the record has no field separator",
     "put one and the data behind the key"},
    {"empty-record", DICTIONARY_ERROR, DICTIONARY_ERROR, "the record is empty",
     "remove it or give it a key and data"},
    {"nul", DICTIONARY_ERROR, DICTIONARY_ERROR, "the record holds a NUL byte", "remove it"},
    {"record-too-long", DICTIONARY_ERROR, DICTIONARY_ERROR,
     "the record is longer than 4194298 bytes", "shorten it"},
    {"unfinished", DICTIONARY_ERROR, DICTIONARY_ERROR, "the last record has no end",
     "put a record separator behind it"},
    {"image-too-large", DICTIONARY_ERROR, DICTIONARY_ERROR,
     "the image would be larger than 2147483647 bytes", "divide the source"},
    {"empty-key", DICTIONARY_ERROR, DICTIONARY_WARNING, "the key is empty and is never found",
     "put one in front of the field separator"},
    {"bad-utf8", DICTIONARY_ERROR, DICTIONARY_WARNING,
     "the key is not UTF-8 from here on and would be cut off here", "write it in UTF-8"},
    {"cr", DICTIONARY_ERROR, DICTIONARY_WARNING,
     "a carriage return ends the line and would be part of the data",
     "end lines with a newline alone, or use the option 'windows'"},
    {"bom", DICTIONARY_ERROR, DICTIONARY_WARNING,
     "a byte-order mark begins the source and would be part of the first key",
     "remove it, or use the option 'windows'"},
    {"beyond-bmp", DICTIONARY_REFUSED, DICTIONARY_REFUSED,
     "the key holds a character above U+FFFF and is left out", "write it without the character"},
    {"no-records", DICTIONARY_ERROR, DICTIONARY_ERROR, "the source has no records",
     "see what became of it, or use the option 'allow-empty'"},
    {"not-text", DICTIONARY_ERROR, DICTIONARY_ERROR, "the source is no text", "name another"},
    {"same-file", DICTIONARY_ERROR, DICTIONARY_ERROR, "the image would replace its own source",
     "give it another name"},
    {"semicolon", DICTIONARY_WARNING, DICTIONARY_WARNING,
     "the field begins with ';', which also joins the data of a key that comes more than once",
     "begin it otherwise if readers are to tell the two apart"}};

const ProblemKind& kindOf(int code) {
    return kKinds[static_cast<std::size_t>(code)];
}

}  // namespace

const char* problemName(int code) {
    const bool known = code >= 0 && static_cast<std::size_t>(code) < std::size(kKinds);
    return known ? kindOf(code).name : "unknown";
}

ProblemLog::ProblemLog(const DictionaryBuildOptions& options, const BuildCallbacks& callbacks)
    : m_callbacks(callbacks),
      m_limit(options.problemLimit == 0 ? kDefaultLimit : options.problemLimit),
      m_lenient(options.lenient) {}

void ProblemLog::add(int code, std::uint64_t line, std::uint64_t column, int systemError) {
    const DictionarySeverity severity = severityOf(code);
    if (isTold(severity)) tell({code, severity, systemError, line, column, nullptr});
}

void ProblemLog::addInWords(int code, const char* text) {
    const DictionarySeverity severity = severityOf(code);
    if (isTold(severity)) m_callbacks.problem({code, severity, 0, 0, 0, text});
}

DictionarySeverity ProblemLog::severityOf(int code) const {
    const ProblemKind& kind = kindOf(code);
    return m_lenient ? kind.lenientSeverity : kind.severity;
}

// Counts a problem. The first error is told beyond the limit, too: nobody should have to guess why
// there is no image.
bool ProblemLog::isTold(DictionarySeverity severity) {
    const bool firstError = severity == DICTIONARY_ERROR && !m_hasErrors;
    if (firstError) m_hasErrors = true;
    return ++m_count <= m_limit || firstError;
}

void ProblemLog::tell(DictionaryProblem problem) const {
    constexpr std::size_t kRoom = 512;
    const ProblemKind& kind = kindOf(problem.code);
    char text[kRoom];
    if (problem.systemError == 0) {
        std::snprintf(text, kRoom, "%s; %s", kind.text, kind.advice);
    } else {
        char room[kRoom];
        const char* const reason = strerror_r(problem.systemError, room, kRoom);
        std::snprintf(text, kRoom, "%s: %s; %s", kind.text, reason, kind.advice);
    }
    problem.text = text;
    m_callbacks.problem(problem);
}

}  // namespace Dictionary::Former

namespace Dictionary::Former {

struct Finding {
    int code;  // a DictionaryProblemCode
    std::uint64_t column;
};

// In words, what a file is that begins like this and is no source; null when it may be one.
const char* foreignKind(std::string_view beginning);

class SourceCheck {
public:
    // Whether records are lines, which may end in a carriage return by mistake.
    explicit SourceCheck(bool recordsAreLines) : m_recordsAreLines(recordsAreLines) {}

    // Makes findings of fields that begin with ";" behind another one, too.
    void lookForJoins(std::string fieldSeparator) { m_join = std::move(fieldSeparator) + ';'; }

    // Takes off what Windows puts in front of the first record and behind each line.
    void takeOffWindowsMarks(SourceRecord& record) const;

    // Examines a record whose field separator stands at `keySize`, npos when there is none. What
    // is found stands in order of the columns until the next call, each kind at most once.
    const std::vector<Finding>& examine(const SourceRecord& record, std::size_t keySize);

private:
    void examineText(const SourceRecord& record, std::size_t keySize);
    void examineFields(std::string_view text, std::size_t keySize);
    void examineKey(std::string_view key);
    bool endsInCr(std::string_view text) const {
        return m_recordsAreLines && !text.empty() && text.back() == '\r';
    }
    void add(int code, std::size_t index) { m_found.push_back({code, index + 1}); }

    bool m_recordsAreLines;
    std::string m_join;  // empty when it is not looked for
    std::vector<Finding> m_found;
};

}  // namespace Dictionary::Former

namespace Dictionary::Former {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kNone = std::string_view::npos;

// No UTF-8 begins like one of these.
constexpr struct {
    std::string_view beginning;
    const char* text;
} kForeignKinds[] = {
    {"\x1F\x8B", "this is a gzip file; try zcat FILE | ..."},
    {"\xFD"
     "7zXZ",
     "this is an xz file; try xzcat FILE | ..."},
    {"\x28\xB5\x2F\xFD", "this is a zstd file; try zstdcat FILE | ..."},
    {"\xFF\xFE", "this is UTF-16; try iconv -f UTF-16 -t UTF-8 FILE | ..."},
    {"\xFE\xFF", "this is UTF-16; try iconv -f UTF-16 -t UTF-8 FILE | ..."},
};

// A header has a word of zero bits, which no text has.
bool looksLikeImage(std::string_view beginning) {
    if (beginning.size() < kCellBytes) return false;
    const Cell header = headerOf(beginning.data());
    return header.check == kFreeImageCheck && featureBytesOf(header) >= 0 &&
           cellBytesOf(header) >= kCellBytes && cellBytesOf(header) % kCellBytes == 0;
}

bool beginsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

}  // namespace

const char* foreignKind(std::string_view beginning) {
    for (const auto& kind : kForeignKinds) {
        if (beginsWith(beginning, kind.beginning)) return kind.text;
    }
    return looksLikeImage(beginning) ? "this is an image; name the source that it was built from"
                                     : nullptr;
}

void SourceCheck::takeOffWindowsMarks(SourceRecord& record) const {
    if (record.number == 1 && beginsWith(record.text, kByteOrderMark)) {
        record.skipped = kByteOrderMark.size();
        record.text.remove_prefix(record.skipped);
    }
    if (endsInCr(record.text)) record.text.remove_suffix(1);
}

const std::vector<Finding>& SourceCheck::examine(const SourceRecord& record, std::size_t keySize) {
    m_found.clear();
    if (record.tooLong) {
        add(DICTIONARY_PROBLEM_RECORD_TOO_LONG, SourceRecords::kMaxRecordBytes);
    } else {
        examineText(record, keySize);
    }
    if (!record.finished) add(DICTIONARY_PROBLEM_UNFINISHED, record.text.size());
    if (m_found.size() > 1) {
        std::stable_sort(m_found.begin(), m_found.end(),
                         [](const Finding& a, const Finding& b) { return a.column < b.column; });
    }
    return m_found;
}

void SourceCheck::examineText(const SourceRecord& record, std::size_t keySize) {
    const std::string_view text = record.text;
    if (record.number == 1 && beginsWith(text, kByteOrderMark)) add(DICTIONARY_PROBLEM_BOM, 0);
    const bool cr = endsInCr(text);
    const std::size_t size = cr ? text.size() - 1 : text.size();
    if (size == 0) {
        add(DICTIONARY_PROBLEM_EMPTY_RECORD, 0);
    } else if (keySize == kNone) {
        add(DICTIONARY_PROBLEM_NO_FIELD, size);
    } else {
        examineKey(text.substr(0, keySize));
        if (!m_join.empty()) examineFields(text, keySize);
    }
    if (cr) add(DICTIONARY_PROBLEM_CR, size);
    const std::size_t nul = text.find('\0');
    if (nul != kNone) add(DICTIONARY_PROBLEM_NUL, nul);
}

// The data of a key that comes more than once is joined by ";", which stands where a field could
// begin.
void SourceCheck::examineFields(std::string_view text, std::size_t keySize) {
    const std::size_t separatorSize = m_join.size() - 1;
    const std::size_t join = text.find(m_join, keySize + separatorSize);
    if (join != kNone) add(DICTIONARY_PROBLEM_SEMICOLON, join + separatorSize);
}

// Judges as the coder will: it refuses a character above the plane, and stops where UTF-8 does.
void SourceCheck::examineKey(std::string_view key) {
    if (key.empty()) return add(DICTIONARY_PROBLEM_EMPTY_KEY, 0);
    std::size_t legal = 0;
    std::size_t beyond = kNone;
    decodeUtf8(key.data(), key.size(),
               [&](std::int32_t code, std::size_t start, std::uint32_t length) {
                   legal = start + length;
                   if (code >= kBmpEnd && beyond == kNone) beyond = start;
               });
    if (beyond != kNone) add(DICTIONARY_PROBLEM_BEYOND_BMP, beyond);
    if (legal < key.size()) add(DICTIONARY_PROBLEM_BAD_UTF8, legal);
}

}  // namespace Dictionary::Former

namespace Dictionary::Former {

// Good for one build. Problems of the source are told as they are found; a SystemFailure and a
// BuildStopped are thrown.
class CheckedBuild {
public:
    // Counts into `report` as it goes on. All but the options must outlive the object.
    CheckedBuild(const DictionaryBuildOptions& options, const BuildCallbacks& callbacks,
                 ProblemLog& log, DictionaryBuildReport& report);

    // Without a name for the image it goes to the callback; without that, too, the source is only
    // checked.
    void run(SourceText& source, const char* imageName);

private:
    bool checkSeparators();
    void read(SourceText& source);
    void tellReading(const SourceText& source) const;
    void take(SourceRecord& record);
    bool tellFindings(const SourceRecord& record, std::size_t keySize);
    void cutFields(std::string_view text, std::size_t keySize);
    bool dataFits() const;
    bool place();
    void write(ImageFile* image);
    std::uint64_t countKeys() const;

    const BuildCallbacks& m_callbacks;
    ProblemLog& m_log;
    DictionaryBuildReport& m_report;
    std::string m_fieldSeparator;
    std::string m_recordSeparator;
    bool m_windows;
    bool m_allowEmpty;
    SourceCheck m_check;
    std::uint64_t m_sourceBytes = 0;  // of the whole source, once it is read
    StringTable m_refused;
    std::optional<SourceTable> m_table;  // none when no image will be made
    std::vector<std::string_view> m_fields;
    TrieBuilder m_builder;
};

}  // namespace Dictionary::Former

namespace Dictionary::Former {

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

}  // namespace Dictionary::Former

namespace Dictionary::Former {

namespace {

// As much of `given` as its maker knew of; the rest is 0.
DictionaryBuildOptions knownPart(const DictionaryBuildOptions* given) {
    DictionaryBuildOptions options = {};
    if (given != nullptr) std::memcpy(&options, given, std::min(given->size, sizeof options));
    return options;
}

// Likewise.
void handOut(DictionaryBuildReport report, DictionaryBuildReport* to) {
    if (to == nullptr) return;
    report.size = to->size;
    std::memcpy(to, &report, std::min(report.size, sizeof report));
}

// What the build throws becomes a problem; only that it was stopped goes on to the caller.
void run(SourceText& source, const char* imageName, const DictionaryBuildOptions& options,
         const BuildCallbacks& callbacks, ProblemLog& log, DictionaryBuildReport& report) {
    try {
        CheckedBuild(options, callbacks, log, report).run(source, imageName);
    } catch (const SystemFailure& failure) {
        log.add(failure.file == SystemFailure::kSource ? DICTIONARY_PROBLEM_CANNOT_READ
                                                       : DICTIONARY_PROBLEM_CANNOT_WRITE,
                0, 0, failure.error);
    } catch (const std::exception&) {
        // The library throws nothing else, and the standard library when memory runs out.
        log.add(DICTIONARY_PROBLEM_NO_MEMORY);
    }
}

int build(SourceText& source, const char* imageName, const DictionaryBuildOptions* given,
          DictionaryBuildReport* report) {
    const DictionaryBuildOptions options = knownPart(given);
    const BuildCallbacks callbacks(options);
    ProblemLog log(options, callbacks);
    DictionaryBuildReport counts = {};
    bool stopped = false;
    try {
        run(source, imageName, options, callbacks, log, counts);
    } catch (const BuildStopped&) {
        stopped = true;
    }
    counts.problems = log.count();
    handOut(counts, report);
    if (stopped) return DICTIONARY_STOPPED;
    if (log.hasErrors()) return DICTIONARY_NOT_BUILT;
    return counts.refused > 0 ? DICTIONARY_BUILT_WITHOUT_SOME : DICTIONARY_BUILT;
}

}  // namespace

}  // namespace Dictionary::Former

const char* dictionaryProblemName(int code) {
    return Dictionary::Former::problemName(code);
}

int dictionaryBuild(const char* sourceName, const char* imageName,
                    const DictionaryBuildOptions* options, DictionaryBuildReport* report) {
    Dictionary::FileText source(sourceName);
    return Dictionary::Former::build(source, imageName, options, report);
}

int dictionaryBuildBytes(const char* source, size_t size, const char* imageName,
                         const DictionaryBuildOptions* options, DictionaryBuildReport* report) {
    Dictionary::MemoryText text(source, size);
    return Dictionary::Former::build(text, imageName, options, report);
}
