// What the JavaScript files call: thin functions over the C interface that return plain values.

#include "Building.h"
#include "Dictionary.h"
#include "Finding.h"
#include "Functions.h"
#include "Image.h"
#include "Keys.h"
#include "Napi.h"
#include "Replacement.h"
#include "Segmenter.h"

namespace Dictionary::Node {

namespace {

void addFunctions(const Env& env, napi_value exports, const Functions& functions) {
    for (const auto& [name, callback] : functions) {
        napi_value function;
        env.check(napi_create_function(env, name, NAPI_AUTO_LENGTH, callback, nullptr, &function));
        env.check(napi_set_named_property(env, exports, name, function));
    }
}

napi_value fill(const Env& env, napi_value exports) {
    for (const auto functions : {imageFunctions, keyFunctions, findFunctions, segmenterFunctions,
                                 replaceFunctions, buildFunctions}) {
        addFunctions(env, exports, functions());
    }
    const napi_value version = env.string(dictionaryVersion());
    env.check(napi_set_named_property(env, exports, "version", version));
    return exports;
}

}  // namespace

}  // namespace Dictionary::Node

NAPI_MODULE_INIT() {
    using namespace Dictionary::Node;
    return withoutThrowing(env, [&] { return fill(Env(env), exports); });
}
