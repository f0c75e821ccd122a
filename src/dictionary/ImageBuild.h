// Helper, not installed: a build from the source to the image.

#ifndef DICTIONARY_IMAGE_BUILD_H
#define DICTIONARY_IMAGE_BUILD_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BuildCallbacks.h"
#include "BuildProblems.h"
#include "Dictionary.h"
#include "ImageTarget.h"
#include "SourceCheck.h"
#include "SourceItems.h"
#include "SourceRecords.h"
#include "SourceTable.h"
#include "SourceText.h"
#include "TrieBuilder.h"

namespace Dictionary {

// For one build. Problems of the source are reported as they are found; a SystemFailure and a
// Failure are thrown.
class ImageBuild {
public:
    // Counts into `report`. Without a target the source is only checked. All arguments except the
    // options must outlive the object.
    ImageBuild(const DictionaryBuildOptions& options, const BuildCallbacks& callbacks,
               ProblemLog& log, DictionaryBuildReport& report, ImageTarget* target);

    void run(SourceText& source);
    // The separators of the options have no effect here.
    void run(SourceItems& items);

private:
    void report(int code, std::uint64_t number = 0, std::uint64_t column = 0);
    bool checkSeparators();
    void beginReading();
    void read(SourceText& source);
    void readRecords(SourceText& source, SourceRecords& records);
    void reportReading(const SourceText& source) const;
    void endReading(std::uint64_t done);
    void take(SourceRecord& record);
    void cutFields(std::string_view text, std::size_t keySize);
    std::string_view keyOf(std::string_view text);
    void build();
    bool dataFits() const;
    void addKeys();
    bool place();
    void write();
    std::uint64_t countKeys() const;

    const BuildCallbacks& m_callbacks;
    ProblemLog& m_log;
    DictionaryBuildReport& m_report;
    ImageTarget* const m_target;
    std::string m_fieldSeparator;
    std::string m_recordSeparator;
    const bool m_fromWindows;
    const bool m_allowEmpty;
    const bool m_isFolded;
    std::string m_foldedKey;
    SourceCheck m_check;
    bool m_hasItems = false;             // in their keys, a backslash and an n are not a newline
    std::uint64_t m_sourceBytes = 0;     // of the records read so far
    std::optional<SourceTable> m_table;  // none when no image will be made
    std::vector<std::string_view> m_fields;
    TrieBuilder m_builder;
};

}  // namespace Dictionary

#endif
