// The functions for whole keys and lists of keys.

#ifndef DICTIONARY_NODE_KEYS_H
#define DICTIONARY_NODE_KEYS_H

#include "Functions.h"

namespace Dictionary::Node {

Functions keyFunctions();

}  // namespace Dictionary::Node

#endif
