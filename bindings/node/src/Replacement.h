// The functions that replace the keys of texts.

#ifndef DICTIONARY_NODE_REPLACEMENT_H
#define DICTIONARY_NODE_REPLACEMENT_H

#include "Functions.h"

namespace Dictionary::Node {

Functions replaceFunctions();

}  // namespace Dictionary::Node

#endif
