// The functions of Dictionary.h that list keys.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "DataText.h"
#include "Dictionary.h"
#include "Errors.h"
#include "Folding.h"
#include "Handle.h"
#include "KeyCursor.h"
#include "OpenImage.h"

// The keys of all images of a handle, merged.
struct DictionaryCursor {
    explicit DictionaryCursor(const Dictionary::Images& images) {
        for (const auto& image : images) {
            sources.push_back({{image->view(), image->keyIndex()}, image->isFolded()});
            longest = std::max(longest, longestKeyOf(*image));
            if (image->isFolded()) longestFolded = std::max(longestFolded, longestKeyOf(*image));
        }
        manyTexts.reset(new char[kTextBytes + longest + 1]);
        foldedPrefix.reserve(kMostGrowth * kMostShrinking * (longestFolded + 1));
    }

    void seek(std::string_view prefix);
    bool next(DictionaryKey& key);
    std::size_t next(DictionaryKey* keys, std::size_t count);

private:
    // The texts of many keys have room for so many bytes and one more key.
    static constexpr std::size_t kTextBytes = 1 << 16;
    // At most, folding shrinks a character from three bytes to one, or grows it from two to three.
    static constexpr std::size_t kMostShrinking = 3;
    static constexpr std::size_t kMostGrowth = 2;

    static std::size_t longestKeyOf(const Dictionary::OpenImage& image) {
        return image.keyIndex().longestKey();
    }
    std::string_view fold(std::string_view prefix);

    struct Source {
        Dictionary::KeyCursor cursor;
        bool isFolded;
        bool mustMove = true;  // before it has another key to hand out
        bool hasKey = false;
    };

    std::vector<Source> sources;  // by the numbers of their images
    std::size_t longest = 0;      // size of the longest key, in bytes
    std::size_t longestFolded = 0;
    std::string foldedPrefix;
    std::unique_ptr<char[]> manyTexts;
};

// Allocates no memory. Folds only so much of a long prefix that the result is longer than all keys.
std::string_view DictionaryCursor::fold(std::string_view prefix) {
    Dictionary::foldUtf8(prefix.substr(0, kMostShrinking * (longestFolded + 1)), foldedPrefix);
    return foldedPrefix;
}

void DictionaryCursor::seek(std::string_view prefix) {
    for (Source& source : sources) {
        source.cursor.seek(source.isFolded ? fold(prefix) : prefix);
        source.mustMove = true;
    }
}

// Takes the least key that is left. If several images have it, the last one counts, and all of them
// move on.
bool DictionaryCursor::next(DictionaryKey& key) {
    Source* least = nullptr;
    for (Source& source : sources) {
        if (source.mustMove) source.hasKey = source.cursor.next();
        source.mustMove = false;
        if (!source.hasKey) continue;
        if (least == nullptr || source.cursor.text() <= least->cursor.text()) least = &source;
    }
    if (least == nullptr) return false;
    const std::string_view text = least->cursor.text();
    for (Source& source : sources) {
        source.mustMove = &source == least || (source.hasKey && source.cursor.text() == text);
    }
    key.text = {text.data(), text.size()};
    key.data = Dictionary::dataText(least->cursor.data());
    key.image = static_cast<uint32_t>(least - sources.data());
    return true;
}

std::size_t DictionaryCursor::next(DictionaryKey* keys, std::size_t count) {
    char* place = manyTexts.get();
    const char* const full = place + kTextBytes;
    std::size_t listed = 0;
    while (listed < count && place < full && next(keys[listed])) {
        DictionaryText& text = keys[listed++].text;
        std::memcpy(place, text.bytes, text.size);
        place[text.size] = '\0';
        text.bytes = place;
        place += text.size + 1;
    }
    return listed;
}

DictionaryCursor* dictionaryOpenCursor(const DictionaryHandle* handle, DictionaryError* error) {
    DictionaryCursor* cursor = nullptr;
    Dictionary::guarded(error, [&] {
        Dictionary::requireArgument(handle != nullptr, "the handle is null");
        cursor = new DictionaryCursor(handle->images);
    });
    return cursor;
}

void dictionarySeekPrefix(DictionaryCursor* cursor, DictionaryText prefix) {
    if (cursor != nullptr) cursor->seek({prefix.bytes, prefix.size});
}

bool dictionaryNextKey(DictionaryCursor* cursor, DictionaryKey* key) {
    if (key == nullptr) return false;
    if (cursor != nullptr && cursor->next(*key)) return true;
    *key = {};
    return false;
}

size_t dictionaryNextKeys(DictionaryCursor* cursor, DictionaryKey* keys, size_t count) {
    return cursor == nullptr || keys == nullptr ? 0 : cursor->next(keys, count);
}

void dictionaryCloseCursor(DictionaryCursor* cursor) {
    delete cursor;
}
