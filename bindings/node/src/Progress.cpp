#include "Progress.h"

#include <memory>
#include <utility>
#include <vector>

namespace Dictionary::Node {

struct Progress::Event {
    int stage;
    double done;
    double total;
    bool isLast;
};

namespace {

constexpr const char* kStages[] = {"read", "place", "write"};

}  // namespace

Progress::Progress(const Env& env, const Value& function, Stop stop) : m_stop(std::move(stop)) {
    if (function.isUndefined()) return;
    constexpr std::size_t kNoLimit = 0, kOneThread = 1;
    env.check(napi_create_threadsafe_function(env, function.get(), nullptr,
                                              env.string("dictionary"), kNoLimit, kOneThread,
                                              nullptr, nullptr, nullptr, deliver, &m_function));
}

bool Progress::report(int stage, std::uint64_t done, std::uint64_t total) {
    send(new Event{stage, static_cast<double>(done), static_cast<double>(total), false});
    return !*m_stop;
}

void Progress::finish() {
    if (m_function == nullptr) return;
    send(new Event{0, 0, 0, true});
    if (m_function != nullptr) napi_release_threadsafe_function(m_function, napi_tsfn_release);
    m_function = nullptr;
}

void Progress::send(Event* event) {
    std::unique_ptr<Event> owner(event);
    if (m_function == nullptr) return;
    const napi_status status =
        napi_call_threadsafe_function(m_function, event, napi_tsfn_nonblocking);
    if (status == napi_ok) {
        owner.release();
    } else if (status == napi_closing) {
        // JavaScript is shutting down; its function must not be touched again.
        m_function = nullptr;
        *m_stop = true;
    }
}

void Progress::deliver(napi_env env, napi_value function, void*, void* data) {
    const std::unique_ptr<Event> event(static_cast<Event*>(data));
    if (env == nullptr) return;
    withoutThrowing(env, [&]() -> napi_value {
        const Env host(env);
        std::vector<napi_value> arguments;
        if (!event->isLast) {
            arguments = {host.string(kStages[event->stage]), host.number(event->done),
                         host.number(event->total)};
        }
        host.check(napi_call_function(env, host.undefined(), function, arguments.size(),
                                      arguments.data(), nullptr));
        return nullptr;
    });
}

}  // namespace Dictionary::Node
