#include "FindRequest.h"

#include <cstddef>
#include <cstdint>
#include <limits>

#include "Errors.h"
#include "Handle.h"
#include "ReadStruct.h"
#include "Segmenter.h"

namespace Dictionary {

namespace {

constexpr std::size_t kMaxTextBytes = std::numeric_limits<std::int32_t>::max();

bool isMode(int mode) {
    return mode >= DICTIONARY_FIND_ALL && mode <= DICTIONARY_FIND_CLASSIC;
}

bool isUnit(int unit) {
    return unit >= DICTIONARY_UNIT_BYTE && unit <= DICTIONARY_UNIT_UTF16;
}

bool segments(int mode) {
    return mode == DICTIONARY_FIND_SEGMENT || mode == DICTIONARY_FIND_WEIGHTED;
}

void requireRight(const DictionaryHandle& handle, const DictionaryFindOptions& options) {
    const bool weighted = options.mode == DICTIONARY_FIND_WEIGHTED;
    const struct {
        bool isRight;
        const char* otherwise;
    } rules[] = {
        {isMode(options.mode), "the mode is not one of DictionaryFindMode"},
        {isUnit(options.unit), "the unit is not one of DictionaryUnit"},
        {weighted == (options.segmenter != nullptr),
         "the mode WEIGHTED needs a segmenter, and no other mode takes one"},
        {!weighted || options.segmenter == nullptr || options.segmenter->handle == &handle,
         "the segmenter was made for another handle"},
        {!options.unknownPieces || segments(options.mode),
         "unknownPieces is only for the modes SEGMENT and WEIGHTED"},
        {!options.joinedRuns || segments(options.mode),
         "joinedRuns is only for the modes SEGMENT and WEIGHTED"},
        {!options.everyImage || options.mode == DICTIONARY_FIND_ALL ||
             options.mode == DICTIONARY_FIND_LONGEST || options.mode == DICTIONARY_FIND_PREFIXES,
         "everyImage is only for the modes ALL, LONGEST and PREFIXES"},
        {!options.wholeWords || options.mode != DICTIONARY_FIND_CLASSIC,
         "wholeWords is not for the mode CLASSIC"},
    };
    for (const auto& rule : rules) requireArgument(rule.isRight, rule.otherwise);
}

}  // namespace

DictionaryFindOptions readFindOptions(const DictionaryHandle* handle,
                                      const DictionaryFindOptions* options) {
    requireArgument(handle != nullptr, "the handle is null");
    const DictionaryFindOptions read =
        readStruct(options, "the options' size is not sizeof(DictionaryFindOptions)");
    requireRight(*handle, read);
    return read;
}

std::string_view readText(DictionaryText text) {
    requireArgument(text.bytes != nullptr || text.size == 0, "the text is null");
    if (text.size > kMaxTextBytes) throw Failure{errorOf(DICTIONARY_TEXT_TOO_LONG)};
    return {text.bytes, text.size};
}

}  // namespace Dictionary
