#include "DictionaryVersion.h"

#include "Dictionary.h"

const char* dictionaryVersion() {
    return DICTIONARY_VERSION;
}
