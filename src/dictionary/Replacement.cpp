// The functions of Dictionary.h that replace keys.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <string_view>

#include "DataField.h"
#include "Dictionary.h"
#include "Errors.h"
#include "FindRequest.h"
#include "Handle.h"
#include "LabelText.h"
#include "MatchList.h"
#include "ReadStruct.h"
#include "TextFind.h"
#include "TextUnits.h"

namespace Dictionary {

namespace {

std::string_view viewOf(const DictionaryText& text) {
    return {text.bytes, text.size};
}

// The caller's result, emptied.
class ReplacedText {
public:
    explicit ReplacedText(DictionaryReplacement& result) : m_result(result) {
        m_result.size = 0;
        m_result.editCount = 0;
    }

    void append(std::string_view bytes) {
        if (bytes.empty()) return;
        if (m_result.capacity - m_result.size < bytes.size()) grow(m_result.size + bytes.size());
        std::memcpy(m_result.bytes + m_result.size, bytes.data(), bytes.size());
        m_result.size += bytes.size();
    }

    void append(const DictionaryEdit& edit) {
        if (m_result.editCount == m_result.editCapacity) {
            growItems(m_result.edits, m_result.editCapacity);
        }
        m_result.edits[m_result.editCount++] = edit;
    }

private:
    void grow(std::size_t least) {
        const std::size_t capacity = std::max(least, 2 * m_result.capacity);
        void* const memory = std::realloc(m_result.bytes, capacity);
        if (memory == nullptr) throw std::bad_alloc();
        m_result.bytes = static_cast<char*>(memory);
        m_result.capacity = capacity;
    }

    DictionaryReplacement& m_result;
};

// Writes a text with its keys replaced. The keys come in their order, with offsets in bytes.
class Replacer {
public:
    Replacer(std::string_view text, int unit, const DictionaryReplaceOptions& options,
             DictionaryReplacement& result)
        : m_text(text),
          m_unit(unit),
          m_options(options),
          m_alternatives(options.alternatives == nullptr ? "" : options.alternatives),
          m_result(result) {}

    void replace(const DictionaryMatch& key) {
        const std::string_view text = replacementFor(viewOf(key.data));
        if (text.empty() && !m_options.removeEmpty) return;
        copyUpTo(key.start);
        m_result.append(text);
        m_copied = key.start + key.length;
        if (m_options.wantEdits) addEdit(m_text.substr(key.start, key.length), text);
    }

    void finish() { copyUpTo(m_text.size()); }

private:
    std::string_view replacementFor(std::string_view data) const {
        const unsigned field = m_options.field == 0 ? 1 : m_options.field;
        const std::string_view text = fieldOfFirstRecord(data, field).value_or("");
        return m_alternatives.empty() ? text : text.substr(0, text.find(m_alternatives));
    }

    void copyUpTo(std::size_t end) {
        const std::string_view copy = m_text.substr(m_copied, end - m_copied);
        m_result.append(copy);
        m_copied = end;
        if (!m_options.wantEdits) return;
        const std::size_t units = unitsOf(copy);
        m_units += units;
        m_resultUnits += units;
    }

    void addEdit(std::string_view key, std::string_view text) {
        const std::size_t start = m_units, resultStart = m_resultUnits;
        m_units += unitsOf(key);
        m_resultUnits += unitsOf(text);
        m_result.append(DictionaryEdit{start, m_units, resultStart, m_resultUnits});
    }

    std::size_t unitsOf(std::string_view bytes) const {
        const LabelText text(bytes);
        return TextUnits<LabelText>(text, m_unit).measure(0, bytes.size()).length;
    }

    const std::string_view m_text;
    const int m_unit;
    const DictionaryReplaceOptions& m_options;
    const std::string_view m_alternatives;  // what separates them; empty if nothing does
    ReplacedText m_result;
    std::size_t m_copied = 0;       // bytes of the text that are done with
    std::size_t m_units = 0;        // units of those bytes
    std::size_t m_resultUnits = 0;  // units of the result
};

DictionaryReplaceOptions readReplaceOptions(const DictionaryReplaceOptions* options) {
    const DictionaryReplaceOptions read =
        readStruct(options, "the options' size is not sizeof(DictionaryReplaceOptions)");
    requireArgument(read.alternatives == nullptr || *read.alternatives != '\0',
                    "the separator of alternatives is empty");
    return read;
}

DictionaryFindOptions readSegmentation(const DictionaryHandle* handle,
                                       const DictionaryFindOptions* options) {
    DictionaryFindOptions segment = {};
    segment.size = sizeof segment;
    segment.mode = DICTIONARY_FIND_SEGMENT;
    const DictionaryFindOptions read =
        readFindOptions(handle, options == nullptr ? &segment : options);
    requireArgument(read.mode == DICTIONARY_FIND_SEGMENT || read.mode == DICTIONARY_FIND_WEIGHTED,
                    "keys are replaced only in the modes SEGMENT and WEIGHTED");
    return read;
}

void replaceKeys(const DictionaryHandle* handle, const DictionaryFindOptions* findOptions,
                 const DictionaryReplaceOptions* options, DictionaryText text,
                 DictionaryReplacement& result) {
    DictionaryFindOptions find = readSegmentation(handle, findOptions);
    const DictionaryReplaceOptions read = readReplaceOptions(options);
    const std::string_view searched = readText(text);
    Replacer replacer(searched, find.unit, read, result);
    find.unit = DICTIONARY_UNIT_BYTE;
    find.unknownPieces = false;
    const auto replace = [](void* context, const DictionaryMatch* key) {
        static_cast<Replacer*>(context)->replace(*key);
        return true;
    };
    visitMatches({*handle, find, searched}, {replace, &replacer});
    replacer.finish();
}

}  // namespace

}  // namespace Dictionary

using namespace Dictionary;

int dictionaryReplaceKeys(const DictionaryHandle* handle, const DictionaryFindOptions* findOptions,
                          const DictionaryReplaceOptions* options, DictionaryText text,
                          DictionaryReplacement* result, DictionaryError* error) {
    const int code = guarded(error, [&] {
        requireArgument(result != nullptr, "the result is null");
        replaceKeys(handle, findOptions, options, text, *result);
    });
    if (code != DICTIONARY_OK && result != nullptr) result->size = result->editCount = 0;
    return code;
}

void dictionaryFreeReplacement(DictionaryReplacement* result) {
    if (result == nullptr) return;
    std::free(result->bytes);
    std::free(result->edits);
    *result = {};
}
