// Helper, not installed: calls of functions that the caller of the library passed in.

#ifndef DICTIONARY_CALLER_CALLBACK_H
#define DICTIONARY_CALLER_CALLBACK_H

#include <cxxabi.h>

namespace Dictionary {

// What `call` returns; false when it throws, as no exception of the caller's passes through the
// library. The end of a thread has no object, which sanitizers take for a fault.
template <class Call>
__attribute__((no_sanitize("null"))) bool callBack(const Call& call) {
    try {
        return call();
    } catch (const abi::__forced_unwind&) {
        throw;  // the thread ends here
    } catch (...) {
        return false;
    }
}

}  // namespace Dictionary

#endif
