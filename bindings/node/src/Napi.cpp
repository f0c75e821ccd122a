#include "Napi.h"

#include <algorithm>

#include "Utf8Text.h"

namespace Dictionary::Node {

namespace {

bool isPending(napi_env env) {
    bool pending = false;
    return napi_is_exception_pending(env, &pending) == napi_ok && pending;
}

// A job on its way through the thread pool, which owns itself until its end.
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
            // The lack of an answer tells.
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

    // Without a value an exception is pending, unless JavaScript is being ended.
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
    // The next call forgets the rest of it.
    const char* const message = info->error_message;
    // All that hosts can do wrong is to pass values of other types.
    if (!isPending(m_env)) napi_throw_type_error(m_env, nullptr, message);
    throw ExceptionIsPending();
}

napi_value Env::null() const {
    napi_value result;
    check(napi_get_null(m_env, &result));
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

napi_value Env::object(std::initializer_list<std::pair<const char*, napi_value>> members) const {
    napi_value result;
    check(napi_create_object(m_env, &result));
    for (const auto& [name, value] : members) {
        check(napi_set_named_property(m_env, result, name, value));
    }
    return result;
}

Call::Call(const Env& env, napi_callback_info info) : m_env(env) {
    std::size_t count = kMostArguments;
    env.check(napi_get_cb_info(env, info, &count, m_arguments, nullptr, nullptr));
}

std::u16string Call::text(std::size_t i) const {
    std::size_t length = 0;
    m_env.check(napi_get_value_string_utf16(m_env, m_arguments[i], nullptr, 0, &length));
    std::u16string text(length, u'\0');
    m_env.check(
        napi_get_value_string_utf16(m_env, m_arguments[i], text.data(), length + 1, nullptr));
    return text;
}

std::string Call::name(std::size_t i) const {
    const Utf8Text utf8(text(i));
    const std::string name(utf8.data(), utf8.size());
    if (name.find('\0') == std::string::npos) return name;
    napi_throw_type_error(m_env, nullptr, "A string without a NUL was expected");
    throw ExceptionIsPending();
}

bool Call::flag(std::size_t i) const {
    bool flag = false;
    m_env.check(napi_get_value_bool(m_env, m_arguments[i], &flag));
    return flag;
}

napi_value promiseOf(const Env& env, Job job) {
    return Task::start(env, std::make_unique<Task>(std::move(job)));
}

}  // namespace Dictionary::Node
