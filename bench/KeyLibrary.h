// The library's modern interface, used to list keys and to look up many.

#ifndef BENCH_KEY_LIBRARY_H
#define BENCH_KEY_LIBRARY_H

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Dictionary.h"
#include "Source.h"

namespace Bench {

class KeyLibrary {
public:
    static constexpr const char* kName = "library";

    explicit KeyLibrary(const std::string& image)
        : m_handle(dictionaryOpenFile(image.c_str(), DICTIONARY_OPEN_MAP, nullptr)) {
        if (m_handle == nullptr) fail("the library refuses " + image);
    }

    // Calls emit(key, text) for the keys that begin with `prefix`, in order, until it returns
    // false.
    template <class Emit>
    void keysFrom(std::string_view prefix, Emit emit) const {
        if (m_cursor == nullptr) openCursor();
        dictionarySeekPrefix(m_cursor.get(), {prefix.data(), prefix.size()});
        for (DictionaryKey key; dictionaryNextKey(m_cursor.get(), &key);) {
            if (!emit(view(key.text), view(key.data))) return;
        }
    }

    // Calls emit(text) for every key, with an empty text where there is no such key.
    template <class Emit>
    void lookUpEach(const std::vector<std::string>& keys, Emit emit) const {
        constexpr std::size_t kPerCall = 1024;
        std::vector<DictionaryText> asked(kPerCall), found(kPerCall);
        for (std::size_t from = 0; from < keys.size(); from += kPerCall) {
            const std::size_t count = std::min(kPerCall, keys.size() - from);
            for (std::size_t i = 0; i < count; ++i) {
                asked[i] = {keys[from + i].data(), keys[from + i].size()};
            }
            dictionaryLookupKeys(m_handle.get(), asked.data(), count, found.data());
            for (std::size_t i = 0; i < count; ++i) emit(view(found[i]));
        }
    }

    // The first call for a handle makes its index.
    void openCursor() const { m_cursor.reset(dictionaryOpenCursor(m_handle.get(), nullptr)); }

private:
    static std::string_view view(DictionaryText text) { return {text.bytes, text.size}; }

    struct Close {
        void operator()(DictionaryHandle* handle) const { dictionaryClose(handle); }
        void operator()(DictionaryCursor* cursor) const { dictionaryCloseCursor(cursor); }
    };

    std::unique_ptr<DictionaryHandle, Close> m_handle;
    mutable std::unique_ptr<DictionaryCursor, Close> m_cursor;
};

}  // namespace Bench

#endif
