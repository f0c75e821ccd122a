#include "DictionaryVersion.h"

#include "DATChecked.h"

const char* dictionaryVersion() {
    return DICTIONARY_VERSION;
}
