// Errors of the library for JavaScript.

#ifndef DICTIONARY_NODE_FAILURE_H
#define DICTIONARY_NODE_FAILURE_H

#include <string>

#include "Dictionary.h"
#include "Napi.h"

namespace Dictionary::Node {

// An error record with copies of its path and its message. Thrown by jobs.
class Failure {
public:
    explicit Failure(const DictionaryError& error);

    int code() const { return m_error.code; }
    napi_value toJs(const Env& env) const;

private:
    DictionaryError m_error;
    std::string m_path;
    std::string m_message;
};

// Throws a Failure unless the record says that all is well.
void throwUnlessOk(const DictionaryError& error);

// A job whose answer is {value}, or {error} if `job` throws a Failure.
Job reporting(Job job);

}  // namespace Dictionary::Node

#endif
