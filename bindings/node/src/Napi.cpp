#include "Napi.h"

#include <algorithm>
#include <cmath>

#include "Utf8String.h"

namespace Dictionary::Node {

namespace {

// The name that Node.js uses.
constexpr const char* kWrongType = "ERR_INVALID_ARG_TYPE";

std::string withoutNul(const Env& env, std::string text) {
    if (text.find('\0') != std::string::npos) {
        env.throwTypeError("A string without a NUL was expected");
    }
    return text;
}

bool isPending(napi_env env) {
    bool pending = false;
    return napi_is_exception_pending(env, &pending) == napi_ok && pending;
}

// A job in the thread pool. It owns itself until it is done.
class Task {
public:
    explicit Task(Job job) : m_job(std::move(job)) {}

    // Returns the promise.
    static napi_value start(const Env& env, std::unique_ptr<Task> task) {
        napi_value promise;
        env.check(napi_create_promise(env, &task->m_deferred, &promise));
        env.check(napi_create_async_work(env, nullptr, env.string("dictionary"), execute, complete,
                                         task.get(), &task->m_work));
        const napi_status status = napi_queue_async_work(env, task->m_work);
        if (status != napi_ok) napi_delete_async_work(env, task->m_work);
        env.check(status);
        task.release();
        return promise;
    }

private:
    static void execute(napi_env, void* data) {
        Task& task = *static_cast<Task*>(data);
        try {
            task.m_answer = task.m_job();
        } catch (const std::bad_alloc&) {
            // Then there is no answer.
        }
    }

    static void complete(napi_env env, napi_status, void* data) {
        const std::unique_ptr<Task> task(static_cast<Task*>(data));
        const napi_value value = withoutThrowing(env, [&] {
            if (!task->m_answer) throw std::bad_alloc();
            return task->m_answer(Env(env));
        });
        task->settle(env, value);
        napi_delete_async_work(env, task->m_work);
    }

    // Without a value, an exception is pending, unless JavaScript is shutting down.
    void settle(napi_env env, napi_value value) {
        if (value != nullptr) {
            napi_resolve_deferred(env, m_deferred, value);
        } else if (napi_get_and_clear_last_exception(env, &value) == napi_ok) {
            napi_reject_deferred(env, m_deferred, value);
        }
    }

    Job m_job;
    Answer m_answer;
    napi_deferred m_deferred = nullptr;
    napi_async_work m_work = nullptr;
};

}  // namespace

void Env::check(napi_status status) const {
    if (status == napi_ok) return;
    const napi_extended_error_info* info = nullptr;
    napi_get_last_error_info(m_env, &info);
    // The next call overwrites the rest of it.
    const char* const message = info->error_message;
    // The only mistake that can be made here is to pass a value of the wrong type.
    if (!isPending(m_env)) napi_throw_type_error(m_env, kWrongType, message);
    throw ExceptionIsPending();
}

void Env::throwTypeError(const std::string& message) const {
    napi_throw_type_error(m_env, kWrongType, message.c_str());
    throw ExceptionIsPending();
}

napi_value Env::undefined() const {
    napi_value result;
    check(napi_get_undefined(m_env, &result));
    return result;
}

napi_value Env::boolean(bool value) const {
    napi_value result;
    check(napi_get_boolean(m_env, value, &result));
    return result;
}

napi_value Env::number(double value) const {
    napi_value result;
    check(napi_create_double(m_env, value, &result));
    return result;
}

napi_value Env::string(std::string_view utf8) const {
    napi_value result;
    check(napi_create_string_utf8(m_env, utf8.data(), utf8.size(), &result));
    return result;
}

napi_value Env::string(std::u16string_view units) const {
    napi_value result;
    check(napi_create_string_utf16(m_env, units.data(), units.size(), &result));
    return result;
}

napi_value Env::array(const std::vector<napi_value>& items) const {
    napi_value result;
    check(napi_create_array_with_length(m_env, items.size(), &result));
    std::uint32_t index = 0;
    for (const napi_value item : items) check(napi_set_element(m_env, result, index++, item));
    return result;
}

napi_value Env::uint32Array(const std::vector<std::uint32_t>& numbers) const {
    void* room = nullptr;
    napi_value buffer;
    check(napi_create_arraybuffer(m_env, numbers.size() * sizeof numbers[0], &room, &buffer));
    std::copy(numbers.begin(), numbers.end(), static_cast<std::uint32_t*>(room));
    napi_value result;
    check(napi_create_typedarray(m_env, napi_uint32_array, numbers.size(), buffer, 0, &result));
    return result;
}

napi_value Env::uint32Array(std::uint32_t* numbers, std::size_t count,
                            std::shared_ptr<const void> owner) const {
    return typedArray(napi_uint32_array, numbers, count, sizeof *numbers, std::move(owner));
}

napi_value Env::uint8Array(char* bytes, std::size_t size, std::shared_ptr<const void> owner) const {
    return typedArray(napi_uint8_array, bytes, size, 1, std::move(owner));
}

napi_value Env::typedArray(napi_typedarray_type type, void* items, std::size_t count,
                           std::size_t itemBytes, std::shared_ptr<const void> owner) const {
    using Owner = std::shared_ptr<const void>;
    const auto release = [](napi_env, void*, void* kept) { delete static_cast<Owner*>(kept); };
    const std::size_t size = count * itemBytes;
    napi_value buffer;
    auto kept = std::make_unique<Owner>(std::move(owner));
    const napi_status status = size == 0 ? napi_no_external_buffers_allowed
                                         : napi_create_external_arraybuffer(
                                               m_env, items, size, release, kept.get(), &buffer);
    if (status == napi_no_external_buffers_allowed) {
        void* room = nullptr;
        check(napi_create_arraybuffer(m_env, size, &room, &buffer));
        std::copy_n(static_cast<const char*>(items), size, static_cast<char*>(room));
    } else {
        check(status);
        kept.release();
    }
    napi_value result;
    check(napi_create_typedarray(m_env, type, count, buffer, 0, &result));
    return result;
}

napi_value Env::object(std::initializer_list<std::pair<const char*, napi_value>> members) const {
    napi_value result;
    check(napi_create_object(m_env, &result));
    for (const auto& [name, value] : members) {
        check(napi_set_named_property(m_env, result, name, value));
    }
    return result;
}

bool Value::isUndefined() const {
    napi_valuetype type;
    m_env.check(napi_typeof(m_env, m_value, &type));
    return type == napi_undefined;
}

bool Value::flag() const {
    bool flag = false;
    m_env.check(napi_get_value_bool(m_env, m_value, &flag));
    return flag;
}

double Value::number() const {
    double number = 0;
    m_env.check(napi_get_value_double(m_env, m_value, &number));
    return number;
}

std::uint32_t Value::count() const {
    constexpr double kMost = UINT32_MAX;
    const double count = number();
    if (count >= 1 && count <= kMost && count == std::floor(count)) {
        return static_cast<std::uint32_t>(count);
    }
    napi_throw_range_error(m_env, "ERR_OUT_OF_RANGE", "A whole number from 1 was expected");
    throw ExceptionIsPending();
}

std::u16string Value::text() const {
    std::size_t length = 0;
    m_env.check(napi_get_value_string_utf16(m_env, m_value, nullptr, 0, &length));
    std::u16string text(length, u'\0');
    m_env.check(napi_get_value_string_utf16(m_env, m_value, text.data(), length + 1, nullptr));
    return text;
}

std::string Value::name() const {
    const Utf8String utf8(text());
    return withoutNul(m_env, std::string(utf8.data(), utf8.size()));
}

std::string Value::bytes() const {
    bool isTypedArray = false;
    napi_typedarray_type type = napi_int8_array;
    std::size_t size = 0;
    void* data = nullptr;
    m_env.check(napi_is_typedarray(m_env, m_value, &isTypedArray));
    if (isTypedArray) {
        m_env.check(
            napi_get_typedarray_info(m_env, m_value, &type, &size, &data, nullptr, nullptr));
    }
    if (type != napi_uint8_array) m_env.throwTypeError("A Uint8Array was expected");
    return {static_cast<const char*>(data), size};
}

std::string Value::path() const {
    return withoutNul(m_env, bytes());
}

Utf16Texts Value::texts() const {
    Utf16Texts texts;
    for (const Value& text : elements()) {
        texts.add([&](char16_t* place, std::size_t room) {
            std::size_t length = 0;
            m_env.check(napi_get_value_string_utf16(m_env, text.get(), place, room, &length));
            return length;
        });
    }
    return texts;
}

std::vector<Value> Value::elements() const {
    std::uint32_t count = 0;
    m_env.check(napi_get_array_length(m_env, m_value, &count));
    std::vector<Value> elements;
    elements.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        napi_value element;
        m_env.check(napi_get_element(m_env, m_value, i, &element));
        elements.emplace_back(m_env, element);
    }
    return elements;
}

Value Value::member(const char* name) const {
    if (isUndefined()) return *this;
    napi_value member;
    m_env.check(napi_get_named_property(m_env, m_value, name, &member));
    return {m_env, member};
}

Call::Call(const Env& env, napi_callback_info info) : m_env(env) {
    std::size_t count = kMostArguments;
    env.check(napi_get_cb_info(env, info, &count, m_arguments, nullptr, nullptr));
}

napi_value promiseOf(const Env& env, Job job) {
    return Task::start(env, std::make_unique<Task>(std::move(job)));
}

}  // namespace Dictionary::Node
