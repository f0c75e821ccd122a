// The functions that find keys in texts.

#ifndef DICTIONARY_NODE_FINDING_H
#define DICTIONARY_NODE_FINDING_H

#include "Functions.h"

namespace Dictionary::Node {

Functions findFunctions();

}  // namespace Dictionary::Node

#endif
