// Helper, not installed: calls of functions that the caller of the library passed in.

#ifndef DICTIONARY_CALLER_CALLBACK_H
#define DICTIONARY_CALLER_CALLBACK_H

#include <cxxabi.h>

namespace Dictionary {

// Returns what `call` returns, or false if it throws: no exception of the caller's may pass through
// the library. The exception that ends a thread has no object, which sanitizers take for a fault.
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
