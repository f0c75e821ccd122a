// The functions of Dictionary.h that look up whole keys.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "DataText.h"
#include "Dictionary.h"
#include "Handle.h"
#include "KeyScan.h"
#include "LabelText.h"
#include "ManyLookups.h"
#include "Utf8Text.h"
#include "Walk.h"

namespace Dictionary {

namespace {

// The key's data text; null if it is not a key.
template <class Text>
DictionaryText lookUpText(const OpenImage& image, const Text& key) {
    DictionaryText data = kNoText;
    findWholeKey(image.view().cells(), key, kAlphabet,
                 [&](std::int32_t feature) { data = dataText(image.view().featureText(feature)); });
    return data;
}

DictionaryText lookUpKey(const OpenImage& image, DictionaryText key) {
    return image.isFolded() ? lookUpText(image, FoldedText({key.bytes, key.size}))
                            : lookUpText(image, Utf8LabelText(key.bytes, key.size));
}

// In a set, the last image that has the key decides.
DictionaryText lookUpKey(const Images& images, DictionaryText key) {
    for (auto image = images.rbegin(); image != images.rend(); ++image) {
        const DictionaryText data = lookUpKey(**image, key);
        if (data.bytes != nullptr) return data;
    }
    return kNoText;
}

// Looks up the keys that have no data yet. Returns how many it found.
std::size_t lookUpInTurn(const OpenImage& image, const DictionaryText* keys, std::size_t count,
                         DictionaryText* data) {
    std::size_t found = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (data[i].bytes != nullptr || keys[i].bytes == nullptr) continue;
        data[i] = lookUpKey(image, keys[i]);
        if (data[i].bytes != nullptr) ++found;
    }
    return found;
}

// The same for many. Keys that the last image does not have are looked up in the one before it.
std::size_t lookUpKeys(const Images& images, const DictionaryText* keys, std::size_t count,
                       DictionaryText* data) {
    std::fill_n(data, count, kNoText);
    std::size_t found = 0;
    for (auto image = images.rbegin(); image != images.rend(); ++image) {
        found += (*image)->isFolded() ? lookUpInTurn(**image, keys, count, data)
                                      : lookUpEach((*image)->view(), keys, count, data);
    }
    return found;
}

// Only counts the keys that are found, some at a time.
std::size_t countKeys(const Images& images, const DictionaryText* keys, std::size_t count) {
    constexpr std::size_t kAtATime = 256;
    DictionaryText data[kAtATime];
    std::size_t found = 0;
    for (std::size_t i = 0; i < count; i += kAtATime) {
        found += lookUpKeys(images, keys + i, std::min(kAtATime, count - i), data);
    }
    return found;
}

}  // namespace

}  // namespace Dictionary

bool dictionaryLookupKey(const DictionaryHandle* handle, DictionaryText key, DictionaryText* data) {
    const DictionaryText found = handle == nullptr || key.bytes == nullptr
                                     ? Dictionary::kNoText
                                     : Dictionary::lookUpKey(handle->images, key);
    if (data != nullptr) *data = found;
    return found.bytes != nullptr;
}

size_t dictionaryLookupKeys(const DictionaryHandle* handle, const DictionaryText* keys,
                            size_t count, DictionaryText* data) {
    if (handle == nullptr || keys == nullptr) {
        if (data != nullptr) std::fill_n(data, count, Dictionary::kNoText);
        return 0;
    }
    if (data == nullptr) return Dictionary::countKeys(handle->images, keys, count);
    return Dictionary::lookUpKeys(handle->images, keys, count, data);
}
