#include "DATMatch.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>
#include <string_view>

#include "EncodedText.h"
#include "ImageFormat.h"
#include "ImageHandle.h"
#include "TextSearch.h"
#include "UTF8Coder.h"
#include "Utf8Text.h"
#include "Walk.h"

namespace Dictionary {

namespace {

constexpr std::size_t kMaxTextBytes = std::numeric_limits<std::int32_t>::max();

class MatchList {
public:
    explicit MatchList(DictionaryMatches& list) : m_list(list) { clear(); }

    void clear() { m_list.count = 0; }
    std::size_t count() const { return m_list.count; }

    void add(const DictionaryMatch& match) {
        if (m_list.count == m_list.capacity) grow();
        m_list.items[m_list.count++] = match;
    }

private:
    void grow() {
        constexpr std::size_t kFirstCapacity = 16;
        const std::size_t capacity = std::max(kFirstCapacity, 2 * m_list.capacity);
        void* const items = std::realloc(m_list.items, capacity * sizeof *m_list.items);
        if (items == nullptr) throw std::bad_alloc();
        m_list.items = static_cast<DictionaryMatch*>(items);
        m_list.capacity = capacity;
    }

    DictionaryMatches& m_list;
};

// Says where keys lie in a text, in a unit. They must come by their starts.
class Ruler {
public:
    Ruler(const EncodedText& text, int unit) : m_text(text), m_unit(unit) {}

    DictionaryMatch measure(std::size_t from, std::size_t end) {
        if (m_unit == DICTIONARY_UNIT_BYTE) return measureBytes(from, end);
        m_units += unitsIn(m_passed, from);
        m_passed = from;
        return {m_units, unitsIn(from, end), nullptr, 0};
    }

private:
    DictionaryMatch measureBytes(std::size_t from, std::size_t end) const {
        const SPOS span = m_text.span(from, end, kNoFeature);
        const auto start = static_cast<std::size_t>(span.start);
        return {start, static_cast<std::size_t>(span.end) + 1 - start, nullptr, 0};
    }

    // Of the labels from `from` up to, but without, `end`.
    std::size_t unitsIn(std::size_t from, std::size_t end) const {
        std::size_t units = end - from;
        for (std::size_t i = from; i < end; ++i) {
            if (m_unit == DICTIONARY_UNIT_UTF16) {
                units += m_text.codes()[i] >= kBmpEnd ? 1 : 0;
            } else {
                units -= m_text.isInsidePair(i) ? 1 : 0;
            }
        }
        return units;
    }

    const EncodedText& m_text;
    int m_unit;
    std::size_t m_passed = 0;  // labels
    std::size_t m_units = 0;   // of those
};

void setData(DictionaryMatch& match, std::string_view data) {
    match.data = data.empty() ? "" : data.data();
    match.dataLength = data.size();
}

// A handle's image with the ways to search it.
class Finder {
public:
    explicit Finder(const void* image)
        : m_image(image), m_alphabetSize(CUTF8Coder().getNumOfSingleWord()) {}

    void find(int mode, int unit, const EncodedText& text, MatchList& matches) const {
        Ruler ruler(text, unit);
        const auto found = [&](std::size_t from, std::size_t end, std::int32_t feature) {
            DictionaryMatch match = ruler.measure(from, end);
            setData(match, m_image.featureText(feature));
            matches.add(match);
        };
        const TextSearch search(m_image.cells(), text);
        switch (mode) {
            case DICTIONARY_FIND_ALL:
                return search.forEachKey(m_alphabetSize, found);
            case DICTIONARY_FIND_SEGMENT:
                return search.forEachSegment(found);
            default:
                return search.forEachLongestKey(m_alphabetSize, found);
        }
    }

    // Whether the whole text is a key, whose data `match` gets.
    bool lookup(const Utf8LabelText& text, DictionaryMatch& match) const {
        bool isKey = false;
        lookUp(m_image.cells(), text, m_alphabetSize, [&](std::int32_t feature) {
            isKey = true;
            setData(match, m_image.featureText(feature));
        });
        return isKey;
    }

private:
    ImageView m_image;
    std::int32_t m_alphabetSize;
};

bool isMode(int mode) {
    return mode >= DICTIONARY_FIND_ALL && mode <= DICTIONARY_FIND_AS_SEARCH;
}

bool isUnit(int unit) {
    return unit >= DICTIONARY_UNIT_BYTE && unit <= DICTIONARY_UNIT_UTF16;
}

struct Texts {
    const char* const* texts;
    const std::size_t* sizes;
    std::size_t count;
};

bool anyIsTooLong(const Texts& texts) {
    return std::any_of(texts.sizes, texts.sizes + texts.count,
                       [](std::size_t size) { return size > kMaxTextBytes; });
}

void findInEach(const void* image, int mode, int unit, const Texts& texts, MatchList& matches,
                std::size_t* ends) {
    const auto outsiders =
        mode == DICTIONARY_FIND_AS_SEARCH ? EncodedText::kStopAtIllegal : EncodedText::kPassOver;
    for (std::size_t i = 0; i < texts.count; ++i) {
        if (image != nullptr) {
            const EncodedText text(texts.texts[i], texts.sizes[i], outsiders);
            Finder(image).find(mode, unit, text, matches);
        }
        if (ends != nullptr) ends[i] = matches.count();
    }
}

}  // namespace

}  // namespace Dictionary

using namespace Dictionary;

bool dictionaryFind(const void* handle, int mode, int unit, const char* text, size_t size,
                    DictionaryMatches* matches) {
    return dictionaryFindInEach(handle, mode, unit, &text, &size, 1, matches, nullptr);
}

bool dictionaryFindInEach(const void* handle, int mode, int unit, const char* const* texts,
                          const size_t* sizes, size_t count, DictionaryMatches* matches,
                          size_t* ends) {
    if (matches == nullptr) return false;
    MatchList list(*matches);
    const Texts all = {texts, sizes, count};
    if (isMode(mode) && isUnit(unit) && !anyIsTooLong(all)) {
        try {
            findInEach(ImageHandle::imageOf(handle), mode, unit, all, list, ends);
            return true;
        } catch (const std::bad_alloc&) {
            list.clear();
        }
    }
    if (ends != nullptr) std::fill_n(ends, count, list.count());
    return false;
}

void dictionaryReleaseMatches(DictionaryMatches* matches) {
    if (matches == nullptr) return;
    std::free(matches->items);
    *matches = {nullptr, 0, 0};
}

bool dictionaryLookup(const void* handle, const char* key, size_t size, const char** data,
                      size_t* dataLength) {
    DictionaryMatch match = {0, 0, nullptr, 0};
    const void* const image = ImageHandle::imageOf(handle);
    const bool isKey = image != nullptr && Finder(image).lookup({key, size}, match);
    if (data != nullptr) *data = match.data;
    if (dataLength != nullptr) *dataLength = match.dataLength;
    return isKey;
}
