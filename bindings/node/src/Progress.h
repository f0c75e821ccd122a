// Progress of builds, passed from their threads to JavaScript's.

#ifndef DICTIONARY_NODE_PROGRESS_H
#define DICTIONARY_NODE_PROGRESS_H

#include <node_api.h>

#include <atomic>
#include <cstdint>
#include <memory>

#include "Napi.h"

namespace Dictionary::Node {

// Whether a build is to stop.
using Stop = std::shared_ptr<std::atomic<bool>>;

// Calls a JavaScript function with (stage, done, total), and after the last report with nothing.
class Progress {
public:
    // If `function` is undefined, nothing is called.
    Progress(const Env& env, const Value& function, Stop stop);
    Progress(const Progress&) = delete;
    ~Progress() { finish(); }

    // Called on the build's thread. Returns false when the build is to stop.
    bool report(int stage, std::uint64_t done, std::uint64_t total);
    // Called after the last report.
    void finish();

private:
    struct Event;
    static void deliver(napi_env env, napi_value function, void* context, void* event);
    void send(Event* event);

    napi_threadsafe_function m_function = nullptr;
    Stop m_stop;
};

}  // namespace Dictionary::Node

#endif
