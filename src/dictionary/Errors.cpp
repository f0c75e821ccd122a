#include "Errors.h"

#include <cxxabi.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iterator>

namespace Dictionary {

namespace {

constexpr DictionarySeverity kError = DICTIONARY_ERROR;
constexpr DictionarySeverity kWarning = DICTIONARY_WARNING;

constexpr CodeKind kKinds[] = {
    {DICTIONARY_OK, "ok", kWarning, kWarning, "nothing is wrong"},
    {DICTIONARY_BAD_ARGUMENT, "bad-argument", kError, kError, "an argument is wrong"},
    {DICTIONARY_NO_MEMORY, "no-memory", kError, kError,
     "there is not enough memory; free some or divide the work"},
    {DICTIONARY_STOPPED, "stopped", kError, kError, "a callback stopped the call"},
    {DICTIONARY_CANNOT_READ, "cannot-read", kError, kError, "the file cannot be read"},
    {DICTIONARY_CANNOT_WRITE, "cannot-write", kError, kError,
     "the image cannot be written; the old file is unchanged"},
    {DICTIONARY_TEXT_TOO_LONG, "text-too-long", kError, kError,
     "the text is longer than 2147483647 bytes; divide it"},

    {DICTIONARY_IMAGE_TOO_SHORT, "image-too-short", kError, kError,
     "too short for the header of an image"},
    {DICTIONARY_IMAGE_TOO_LARGE, "image-too-large", kError, kError,
     "the image would be larger than 2147483647 bytes; divide the source"},
    {DICTIONARY_IMAGE_HEADER, "header", kError, kError, "the header is not that of an image"},
    {DICTIONARY_IMAGE_AREA, "area", kError, kError,
     "a feature record does not end inside the area"},
    {DICTIONARY_IMAGE_FREE_CELL, "free-cell", kError, kError, "a free cell is not as written"},
    {DICTIONARY_IMAGE_PARENT, "parent", kError, kError, "the parent of a cell is impossible"},
    {DICTIONARY_IMAGE_LABEL, "label", kError, kError,
     "a cell is out of reach of its parent's base"},
    {DICTIONARY_IMAGE_BASE, "base", kError, kError, "a cell's base leads nowhere"},
    {DICTIONARY_IMAGE_FEATURE, "feature", kError, kError,
     "a cell's feature does not begin a record"},

    {DICTIONARY_BAD_SEPARATOR, "bad-separator", kError, kError,
     "a separator is empty or has a NUL byte; use one of other bytes"},
    {DICTIONARY_NO_FIELD, "no-field", kError, kError,
     "the record has no field separator; put one and the data after the key"},
    {DICTIONARY_EMPTY_RECORD, "empty-record", kError, kError,
     "the record is empty; remove it or write a key and data"},
    {DICTIONARY_NUL, "nul", kError, kError, "the record has a NUL byte; remove it"},
    {DICTIONARY_RECORD_TOO_LONG, "record-too-long", kError, kError,
     "the record is longer than 4194298 bytes; shorten it"},
    {DICTIONARY_UNFINISHED, "unfinished", kError, kError,
     "the last record has no end; put a record separator after it"},
    {DICTIONARY_EMPTY_KEY, "empty-key", kError, kWarning,
     "the key is empty and is never found; put one before the field separator"},
    {DICTIONARY_BAD_UTF8, "bad-utf8", kError, kWarning,
     "the key is not UTF-8 from here on and would be cut off here; write it in UTF-8"},
    {DICTIONARY_CR, "cr", kError, kWarning,
     "a carriage return ends the line and would be part of the data; "
     "end lines with a newline alone, or read the source as one from Windows"},
    {DICTIONARY_BOM, "bom", kError, kWarning,
     "a byte-order mark begins the source and would be part of the first key; "
     "remove it, or read the source as one from Windows"},
    {DICTIONARY_NO_RECORDS, "no-records", kError, kError,
     "the source has no records; write some or allow an empty image"},
    {DICTIONARY_NOT_TEXT, "not-text", kError, kError,
     "the source is not text in UTF-8; unpack or convert it"},
    {DICTIONARY_SAME_FILE, "same-file", kError, kError,
     "the image would replace the source; give it another name"},
    {DICTIONARY_FIELD_MARK, "field-mark", kWarning, kWarning,
     "the field begins with \";\", which marks the next record of a repeated key; "
     "write it differently if readers must distinguish the two"},

    {DICTIONARY_NO_WEIGHT, "no-weight", kError, kError,
     "a key does not have the field with its weight"},
    {DICTIONARY_BAD_WEIGHT, "bad-weight", kError, kError,
     "the weight of a key is not a valid number"},
};

constexpr std::int64_t kNowhere = -1;

void setText(DictionaryError& error, const char* text) {
    std::snprintf(error.text, sizeof error.text, "%s", text);
}

}  // namespace

const CodeKind& codeKindOf(int code) {
    for (const CodeKind& kind : kKinds) {
        if (kind.code == code) return kind;
    }
    static constexpr CodeKind kUnknown = {0, "unknown", kError, kError, "an unknown error"};
    return kUnknown;
}

DictionaryError errorOf(int code) {
    return errorOf(code, codeKindOf(code).text);
}

DictionaryError errorOf(int code, const char* text) {
    DictionaryError error = {};
    error.code = code;
    error.severity = codeKindOf(code).severity;
    error.cell = kNowhere;
    error.offset = kNowhere;
    setText(error, text);
    return error;
}

void refuseArgument(const char* text) {
    throw Failure{errorOf(DICTIONARY_BAD_ARGUMENT, text)};
}

void failOnFile(int code, DictionaryFile file, const char* path, int systemError) {
    DictionaryError error = errorOf(systemError == ENOMEM ? DICTIONARY_NO_MEMORY : code);
    error.systemError = systemError;
    error.file = file;
    error.path = path;
    throw Failure{error};
}

// The exception that ends a thread has no object, which sanitizers take for a fault.
__attribute__((no_sanitize("null"))) DictionaryError errorInFlight() {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure.error;
    } catch (const abi::__forced_unwind&) {
        throw;  // the thread ends here
    } catch (const std::exception&) {
        // Only the standard library throws these, and only when memory runs out.
        return errorOf(DICTIONARY_NO_MEMORY);
    } catch (...) {
        return errorOf(DICTIONARY_STOPPED);
    }
}

void setNoError(DictionaryError* error) {
    if (error == nullptr) return;
    error->code = DICTIONARY_OK;
    error->severity = kWarning;
    error->systemError = 0;
    error->file = DICTIONARY_FILE_NONE;
    error->path = nullptr;
    error->line = 0;
    error->column = 0;
    error->cell = kNowhere;
    error->offset = kNowhere;
    error->text[0] = '\0';
}

}  // namespace Dictionary

const char* dictionaryCodeName(int code) {
    return Dictionary::codeKindOf(code).name;
}
