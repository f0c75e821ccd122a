// Helper, not installed: a build from the source to the image's file, without a word on any stream.

#ifndef DICTIONARY_CHECKED_BUILD_H
#define DICTIONARY_CHECKED_BUILD_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "BuildCallbacks.h"
#include "BuildProblems.h"
#include "DATChecked.h"
#include "ImageFile.h"
#include "SourceCheck.h"
#include "SourceRecords.h"
#include "SourceTable.h"
#include "SourceText.h"
#include "StringTable.h"
#include "TrieBuilder.h"

namespace Dictionary {

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

}  // namespace Dictionary

#endif
