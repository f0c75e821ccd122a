// Functions that JavaScript can call.

#ifndef DICTIONARY_NODE_FUNCTIONS_H
#define DICTIONARY_NODE_FUNCTIONS_H

#include <node_api.h>

#include <vector>

namespace Dictionary::Node {

struct Function {
    const char* name;
    napi_callback callback;
};

using Functions = std::vector<Function>;

}  // namespace Dictionary::Node

#endif
