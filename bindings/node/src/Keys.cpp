#include "Keys.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "Dictionary.h"
#include "Failure.h"
#include "Image.h"
#include "Napi.h"
#include "Utf8String.h"

namespace Dictionary::Node {

namespace {

napi_value toJs(const Env& env, const DictionaryText& data) {
    if (data.bytes == nullptr) return env.undefined();
    return env.string(std::string_view(data.bytes, data.size));
}

// lookup(image, key): its data, or undefined
napi_value lookup(const Call& call) {
    DictionaryText data = {};
    dictionaryLookupKey(call[0].external<Image>()->handle(), Utf8String(call[1].text()), &data);
    return toJs(call.env(), data);
}

// has(image, key)
napi_value has(const Call& call) {
    return call.env().boolean(dictionaryLookupKey(call[0].external<Image>()->handle(),
                                                  Utf8String(call[1].text()), nullptr));
}

// lookupEach(image, keys): their data, or undefined
napi_value lookupEach(const Call& call) {
    const Utf8Strings keys(call[1].texts());
    std::vector<DictionaryText> data(keys.size());
    dictionaryLookupKeys(call[0].external<Image>()->handle(), keys.data(), keys.size(),
                         data.data());
    std::vector<napi_value> answers;
    answers.reserve(data.size());
    for (const DictionaryText& text : data) answers.push_back(toJs(call.env(), text));
    return call.env().array(answers);
}

// dataAt(image, dataNumber, imageNumber): a data text, or undefined
napi_value dataAt(const Call& call) {
    const auto dataNumber = static_cast<std::uint32_t>(call[1].number());
    const auto imageNumber = static_cast<std::uint32_t>(call[2].number());
    return toJs(call.env(),
                dictionaryDataAt(call[0].external<Image>()->handle(), imageNumber, dataNumber));
}

// ---- Lists of keys

struct Cursor {
    Image image;
    std::unique_ptr<DictionaryCursor, void (*)(DictionaryCursor*)> cursor;
};

// openCursor(image, prefix): a cursor
Job openCursor(const Call& call) {
    return reporting([image = call[0].external<Image>(), prefix = call[1].text()]() -> Answer {
        DictionaryError error = {};
        const auto cursor = std::make_shared<Cursor>(
            Cursor{image, {dictionaryOpenCursor(image->handle(), &error), dictionaryCloseCursor}});
        throwUnlessOk(error);
        dictionarySeekPrefix(cursor->cursor.get(), Utf8String(prefix));
        return [cursor](const Env& env) { return env.external(cursor); };
    });
}

constexpr std::size_t kCountedAtOnce = 1024;

// countKeys(cursor): how many keys are left
napi_value countKeys(const Call& call) {
    DictionaryCursor* const cursor = call[0].external<std::shared_ptr<Cursor>>()->cursor.get();
    std::vector<DictionaryKey> keys(kCountedAtOnce);
    double total = 0;
    while (const std::size_t count = dictionaryNextKeys(cursor, keys.data(), keys.size())) {
        total += static_cast<double>(count);
    }
    return call.env().number(total);
}

// nextKeys(cursor, count): up to `count` keys, each with its data after it, as an array; empty at
// the end
napi_value nextKeys(const Call& call) {
    DictionaryCursor* const cursor = call[0].external<std::shared_ptr<Cursor>>()->cursor.get();
    std::vector<DictionaryKey> keys(static_cast<std::size_t>(call[1].number()));
    keys.resize(dictionaryNextKeys(cursor, keys.data(), keys.size()));
    std::vector<napi_value> list;
    list.reserve(2 * keys.size());
    for (const DictionaryKey& key : keys) {
        list.push_back(toJs(call.env(), key.text));
        list.push_back(toJs(call.env(), key.data));
    }
    return call.env().array(list);
}

}  // namespace

Functions keyFunctions() {
    return {
        {"lookup", direct<lookup>},         {"has", direct<has>},
        {"lookupEach", direct<lookupEach>}, {"dataAt", direct<dataAt>},
        {"openCursor", runNow<openCursor>}, {"nextKeys", direct<nextKeys>},
        {"countKeys", direct<countKeys>},
    };
}

}  // namespace Dictionary::Node
