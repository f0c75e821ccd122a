// Node-API for C++: values are made and read without checking every status, and jobs run at once or
// on the thread pool.

#ifndef DICTIONARY_NODE_NAPI_H
#define DICTIONARY_NODE_NAPI_H

#include <node_api.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Utf16Texts.h"

namespace Dictionary::Node {

// Thrown when a JavaScript exception is pending, which JavaScript sees as soon as we return.
struct ExceptionIsPending {};

// Makes JavaScript values, on JavaScript's thread. Throws ExceptionIsPending.
class Env {
public:
    explicit Env(napi_env env) : m_env(env) {}
    operator napi_env() const { return m_env; }

    void check(napi_status status) const;
    [[noreturn]] void throwTypeError(const std::string& message) const;

    napi_value undefined() const;
    napi_value boolean(bool value) const;
    napi_value number(double value) const;
    napi_value string(std::string_view utf8) const;
    napi_value string(std::u16string_view units) const;
    napi_value array(const std::vector<napi_value>& items) const;
    napi_value uint32Array(const std::vector<std::uint32_t>& numbers) const;
    // Over the memory that `owner` keeps. It is copied where the runtime allows nothing else.
    napi_value uint32Array(std::uint32_t* numbers, std::size_t count,
                           std::shared_ptr<const void> owner) const;
    napi_value uint8Array(char* bytes, std::size_t size, std::shared_ptr<const void> owner) const;
    napi_value object(std::initializer_list<std::pair<const char*, napi_value>> members) const;
    // Keeps `value` as long as JavaScript keeps the external.
    template <class Value>
    napi_value external(Value value) const;

private:
    napi_value typedArray(napi_typedarray_type type, void* items, std::size_t count,
                          std::size_t itemBytes, std::shared_ptr<const void> owner) const;

    napi_env m_env;
};

// A JavaScript value that was passed to us. Throws ExceptionIsPending when it is not of the kind
// asked for.
class Value {
public:
    Value(const Env& env, napi_value value) : m_env(env), m_value(value) {}

    napi_value get() const { return m_value; }
    bool isUndefined() const;
    bool flag() const;
    double number() const;
    // A number of a field or the like, from 1.
    std::uint32_t count() const;
    std::u16string text() const;
    // In UTF-8, as a C string: without a NUL.
    std::string name() const;
    // A copy of a Uint8Array.
    std::string bytes() const;
    // A copy of a path in a Uint8Array, as a C string: without a NUL.
    std::string path() const;
    Utf16Texts texts() const;
    std::vector<Value> elements() const;
    // Undefined if there is no such member, or if this is undefined and not an object.
    Value member(const char* name) const;
    template <class Kept>
    Kept& external() const;

private:
    Env m_env;
    napi_value m_value;
};

// The arguments of a call.
class Call {
public:
    Call(const Env& env, napi_callback_info info);

    const Env& env() const { return m_env; }
    Value operator[](std::size_t i) const { return {m_env, m_arguments[i]}; }

private:
    static constexpr std::size_t kMostArguments = 6;

    Env m_env;
    napi_value m_arguments[kMostArguments];
};

// Makes the JavaScript value of a job's result, on JavaScript's thread.
using Answer = std::function<napi_value(const Env&)>;
// Called once, on any thread. May throw std::bad_alloc.
using Job = std::function<Answer()>;

// Runs a job on the thread pool and returns the promise of its answer.
napi_value promiseOf(const Env& env, Job job);

// Calls `body`. What it throws becomes JavaScript's pending exception, and the result is null.
template <class Body>
napi_value withoutThrowing(napi_env env, Body body) {
    try {
        return body();
    } catch (const ExceptionIsPending&) {
        // JavaScript has it already.
    } catch (const std::bad_alloc&) {
        napi_throw_error(env, "no-memory", "there is not enough memory");
    }
    return nullptr;
}

// Functions for JavaScript, made from functions that read arguments and return a value or a job.
template <napi_value (*kFunction)(const Call&)>
napi_value direct(napi_env env, napi_callback_info info) {
    return withoutThrowing(env, [&] { return kFunction(Call(Env(env), info)); });
}

template <Job (*kPrepare)(const Call&)>
napi_value runNow(napi_env env, napi_callback_info info) {
    return withoutThrowing(env, [&] { return kPrepare(Call(Env(env), info))()(Env(env)); });
}

template <Job (*kPrepare)(const Call&)>
napi_value runLater(napi_env env, napi_callback_info info) {
    return withoutThrowing(env,
                           [&] { return promiseOf(Env(env), kPrepare(Call(Env(env), info))); });
}

template <class Kept>
napi_value Env::external(Kept value) const {
    const auto release = [](napi_env, void* kept, void*) { delete static_cast<Kept*>(kept); };
    auto kept = std::make_unique<Kept>(std::move(value));
    napi_value result;
    check(napi_create_external(m_env, kept.get(), release, nullptr, &result));
    kept.release();
    return result;
}

template <class Kept>
Kept& Value::external() const {
    void* kept = nullptr;
    m_env.check(napi_get_value_external(m_env, m_value, &kept));
    return *static_cast<Kept*>(kept);
}

}  // namespace Dictionary::Node

#endif
