// The function of Dictionary.h that looks up whole keys.

#include <cstdint>
#include <string_view>

#include "Dictionary.h"
#include "Handle.h"
#include "TextFind.h"
#include "Utf8Text.h"
#include "Walk.h"

namespace Dictionary {

namespace {

constexpr DictionaryText kNoData = {nullptr, 0};

// The key's data text; null when it is no key.
DictionaryText lookUpKey(const OpenImage& image, DictionaryText key) {
    DictionaryText data = kNoData;
    lookUp(image.view().cells(), Utf8LabelText(key.bytes, key.size), kAlphabet,
           [&](std::int32_t feature) {
               const std::string_view text = image.view().featureText(feature);
               data = {text.empty() ? "" : text.data(), text.size()};
           });
    return data;
}

// Of a set, the last image that has the key decides.
DictionaryText lookUpKey(const Images& images, DictionaryText key) {
    for (auto image = images.rbegin(); image != images.rend(); ++image) {
        const DictionaryText data = lookUpKey(**image, key);
        if (data.bytes != nullptr) return data;
    }
    return kNoData;
}

}  // namespace

}  // namespace Dictionary

bool dictionaryLookupKey(const DictionaryHandle* handle, DictionaryText key, DictionaryText* data) {
    const DictionaryText found = handle == nullptr || key.bytes == nullptr
                                     ? Dictionary::kNoData
                                     : Dictionary::lookUpKey(handle->images, key);
    if (data != nullptr) *data = found;
    return found.bytes != nullptr;
}
