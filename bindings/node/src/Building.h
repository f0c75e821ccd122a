// The functions that build images.

#ifndef DICTIONARY_NODE_BUILDING_H
#define DICTIONARY_NODE_BUILDING_H

#include "Functions.h"

namespace Dictionary::Node {

Functions buildFunctions();

}  // namespace Dictionary::Node

#endif
