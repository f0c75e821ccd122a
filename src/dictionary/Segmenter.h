// Helper, not installed: what a DictionarySegmenter is.

#ifndef DICTIONARY_SEGMENTER_H
#define DICTIONARY_SEGMENTER_H

#include "CheapestPath.h"
#include "Dictionary.h"

struct DictionarySegmenter {
    const DictionaryHandle* const handle;  // the only one that it can be used with
    const Dictionary::WeightedImages weighted;
};

#endif
