// Sizes and places that hosts have compiled in. Compiling this file is the test.

#include <cstddef>
#include <type_traits>

#include "DATChecked.h"
#include "DATDictionarySample.h"
#include "DATMatch.h"
#include "DATReader.h"
#include "DATWriter.h"
#include "FeatureData.h"
#include "RecordReader.h"
#include "UTF8Coder.h"

using namespace Dictionary;

// Records: the size and, where offsetof may be used, the last member's place.
static_assert(sizeof(SPOS) == 12 && offsetof(SPOS, feature) == 8, "");
static_assert(sizeof(DictionaryMatch) == 32 && offsetof(DictionaryMatch, dataLength) == 24, "");
static_assert(sizeof(DictionaryMatches) == 24 && offsetof(DictionaryMatches, capacity) == 16, "");
static_assert(sizeof(DictionaryImageFault) == 32 && offsetof(DictionaryImageFault, text) == 24, "");
static_assert(sizeof(DictionaryProblem) == 40 && offsetof(DictionaryProblem, text) == 32, "");
static_assert(sizeof(DictionaryBuildOptions) == 72, "");
static_assert(offsetof(DictionaryBuildOptions, context) == 48, "");
static_assert(sizeof(DictionaryBuildReport) == 48, "");
static_assert(offsetof(DictionaryBuildReport, imageBytes) == 40, "");
static_assert(sizeof(SInnerDATWUnit) == 136, "");

// Classes that hosts make for themselves.
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
