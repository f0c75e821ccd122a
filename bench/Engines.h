// Everything that is measured: other libraries and this one, as a list of types.

#ifndef BENCH_ENGINES_H
#define BENCH_ENGINES_H

#include "DartsIndex.h"
#include "DatrieIndex.h"
#include "HashIndex.h"
#include "Library.h"
#include "MarisaIndex.h"

namespace Bench {

// The engine with whose answers those of the others are compared.
using Reference = OtherDictionary<DartsIndex>;

template <class T>
struct Type {
    using type = T;
};

// Calls use(Type<Engine>()) for the library on every kernel that this machine can run, except the
// one that it uses.
template <class Use>
void forEachFurtherKernel(Use use) {
    const auto useIfPossible = [&](auto type) {
        if (InUse<typename decltype(type)::type>::isPossible()) use(type);
    };
    useIfPossible(Type<LibraryOn<Dictionary::kAvx2>>());
    useIfPossible(Type<LibraryOn<Dictionary::kBaseline>>());
}

// Calls use(Type<Engine>()) for every engine.
template <class Use>
void forEachEngine(Use use) {
    use(Type<Reference>());
    use(Type<OtherDictionary<MarisaIndex>>());
    use(Type<OtherDictionary<DatrieIndex>>());
    use(Type<OtherDictionary<HashIndex>>());
    use(Type<Library>());
}

// Ends the program unless the engine finds every key with its text.
template <class Engine>
void checkKeys(const Engine& engine, const std::vector<Entry>& entries) {
    constexpr std::size_t kShown = 60;
    std::string text;
    for (const Entry& entry : entries) {
        engine.exact(std::string(entry.key), text);
        if (text == entry.text) continue;
        fail(std::string(Engine::kName) + ": another text for " +
             std::string(entry.key, 0, kShown));
    }
}

}  // namespace Bench

#endif
