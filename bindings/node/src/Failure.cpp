#include "Failure.h"

#include <cstddef>
#include <utility>

namespace Dictionary::Node {

namespace {

constexpr const char* kSeverities[] = {"error", "warning"};

std::string messageOf(const DictionaryError& error) {
    std::string message(dictionaryErrorMessage(&error, nullptr, 0), '\0');
    dictionaryErrorMessage(&error, message.data(), message.size() + 1);
    return message;
}

}  // namespace

Failure::Failure(const DictionaryError& error)
    : m_error(error), m_path(error.path == nullptr ? "" : error.path), m_message(messageOf(error)) {
    m_error.path = nullptr;
}

napi_value Failure::toJs(const Env& env) const {
    const auto number = [&env](auto value) { return env.number(static_cast<double>(value)); };
    return env.object({{"kind", env.string(dictionaryCodeName(m_error.code))},
                       {"severity", env.string(kSeverities[m_error.severity])},
                       {"path", m_path.empty() ? env.undefined() : env.string(m_path)},
                       {"errno", number(m_error.systemError)},
                       {"line", number(m_error.line)},
                       {"column", number(m_error.column)},
                       {"cell", number(m_error.cell)},
                       {"offset", number(m_error.offset)},
                       {"text", env.string(m_error.text)},
                       {"message", env.string(m_message)}});
}

void throwUnlessOk(const DictionaryError& error) {
    if (error.code != DICTIONARY_OK) throw Failure(error);
}

Job reporting(Job job) {
    return [job = std::move(job)]() -> Answer {
        try {
            return [answer = job()](const Env& env) {
                return env.object({{"value", answer(env)}});
            };
        } catch (const Failure& failure) {
            return [failure](const Env& env) { return env.object({{"error", failure.toJs(env)}}); };
        }
    };
}

}  // namespace Dictionary::Node
