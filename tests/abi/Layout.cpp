// Sizes and offsets that are compiled into hosts. Compiling this file is the test.

#include <cstddef>
#include <type_traits>

#include "DATDictionarySample.h"
#include "DATReader.h"
#include "DATWriter.h"
#include "Dictionary.h"
#include "FeatureData.h"
#include "RecordReader.h"
#include "UTF8Coder.h"

using namespace Dictionary;

// Records: the size and, where offsetof may be used, the offset of the last member.
static_assert(sizeof(SPOS) == 12 && offsetof(SPOS, feature) == 8, "");
static_assert(sizeof(DictionaryText) == 16 && offsetof(DictionaryText, size) == 8, "");
static_assert(sizeof(DictionaryError) == 312 && offsetof(DictionaryError, text) == 56, "");
static_assert(sizeof(DictionaryDescription) == 48, "");
static_assert(offsetof(DictionaryDescription, folded) == 44, "");
static_assert(sizeof(DictionaryField) == 24 && offsetof(DictionaryField, beginsRecord) == 16, "");
static_assert(sizeof(DictionaryKey) == 40 && offsetof(DictionaryKey, image) == 32, "");
static_assert(sizeof(DictionaryFindOptions) == 32, "");
static_assert(offsetof(DictionaryFindOptions, joinedRuns) == 27, "");
static_assert(sizeof(DictionaryMatch) == 40 && offsetof(DictionaryMatch, image) == 36, "");
static_assert(sizeof(DictionaryMatches) == 24 && offsetof(DictionaryMatches, capacity) == 16, "");
static_assert(sizeof(DictionaryColumns) == 56 && offsetof(DictionaryColumns, capacity) == 48, "");
static_assert(sizeof(DictionarySegmenterOptions) == 24, "");
static_assert(sizeof(DictionaryReplaceOptions) == 32, "");
static_assert(sizeof(DictionaryReplacement) == 48, "");
static_assert(sizeof(DictionarySource) == 48 && offsetof(DictionarySource, context) == 40, "");
static_assert(sizeof(DictionaryTarget) == 24 && offsetof(DictionaryTarget, buffer) == 16, "");
static_assert(sizeof(DictionaryBuildOptions) == 56, "");
static_assert(offsetof(DictionaryBuildOptions, context) == 48, "");
static_assert(sizeof(DictionaryBuildReport) == 40, "");
static_assert(offsetof(DictionaryBuildReport, imageBytes) == 32, "");
static_assert(sizeof(SInnerDATWUnit) == 136, "");

// Classes whose objects hosts make themselves.
static_assert(sizeof(CDATReader) == 48, "");
static_assert(sizeof(CDATWriter) == 24, "");
static_assert(sizeof(CDictionayApp) == 32, "");
static_assert(sizeof(CFeatureData) == 40, "");
static_assert(sizeof(CFeatureDataContainer) == 24, "");
static_assert(sizeof(CRecordReader) == 112, "");
static_assert(sizeof(CUTF8Coder) == sizeof(void*), "");

// What hosts may do with them.
static_assert(std::is_copy_constructible<CDATReader>::value, "");
static_assert(std::is_copy_assignable<CDATReader>::value, "");
static_assert(std::is_destructible<ICoderInterface>::value, "");
static_assert(!std::has_virtual_destructor<ICoderInterface>::value, "");
