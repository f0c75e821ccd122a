#include "TextFind.h"

#include <cstddef>
#include <cstring>

#include "DataText.h"
#include "EncodedText.h"
#include "KeyScan.h"
#include "PieceFind.h"
#include "SetSearch.h"
#include "TextKeys.h"
#include "TextSearch.h"
#include "TextUnits.h"
#include "Utf8Text.h"

namespace Dictionary {

namespace {

// ---- What becomes of a match, or of a key and the stretch of the text where it is ----

DictionaryMatch matchOf(const Images& images, const Stretch& stretch, const KeyAt& key) {
    return {stretch.start, stretch.length,
            dataText(images[key.image]->view().featureText(key.feature)),
            static_cast<std::uint32_t>(key.feature), key.image};
}

struct ToList {
    const Images& images;
    MatchList& list;

    bool operator()(const DictionaryMatch& match) const {
        list.add(match);
        return true;
    }
    bool operator()(const Stretch& stretch, const KeyAt& key) const {
        return (*this)(matchOf(images, stretch, key));
    }
};

struct ToColumns {
    std::uint32_t text;
    ColumnList& columns;

    bool operator()(const DictionaryMatch& match) const {
        return add({match.start, match.length}, match.dataNumber, match.image);
    }
    bool operator()(const Stretch& stretch, const KeyAt& key) const {
        return add(stretch, static_cast<std::uint32_t>(key.feature), key.image);
    }

private:
    bool add(const Stretch& stretch, std::uint32_t dataNumber, std::uint32_t image) const {
        columns.add({text, static_cast<std::uint32_t>(stretch.start),
                     static_cast<std::uint32_t>(stretch.start + stretch.length), dataNumber,
                     image});
        return true;
    }
};

struct ToTaker {
    const Images& images;
    const MatchTaker& taker;

    bool operator()(const DictionaryMatch& match) const { return taker(match); }
    bool operator()(const Stretch& stretch, const KeyAt& key) const {
        return taker(matchOf(images, stretch, key));
    }
};

// ---- One by one; `use` returns false to stop ----

template <class Keys, class Text, class Scan, class Use>
bool visitIn(Keys& keys, const Text& text, int unit, const Scan& scan, const Use& use) {
    TextUnits<Text> units(text, unit);
    return scan(keys, [&](std::size_t from, const KeyAt& key) {
        return use(units.measure(from, key.end), key);
    });
}

template <class Scan, class Use>
bool visitBy(const TextFind& find, const Scan& scan, const Use& use) {
    return withKeys(find, [&](auto& keys, const auto& text) {
        return visitIn(keys, text, find.options.unit, scan, use);
    });
}

template <class Use>
bool visitAll(const TextFind& find, const Use& use) {
    return visitBy(
        find, [](auto& keys, const auto& found) { return scanAllKeys(keys, found); }, use);
}

template <class Use>
bool visitLongest(const TextFind& find, const Use& use) {
    return visitBy(
        find, [](auto& keys, const auto& found) { return scanLongestKeys(keys, found); }, use);
}

// Segmentations also have pieces that are not keys.
template <bool (*visit)(const TextFind&, const MatchTaker&), class Use>
bool visitPieces(const TextFind& find, const Use& use) {
    const auto take = [](void* context, const DictionaryMatch* match) {
        return (*static_cast<const Use*>(context))(*match);
    };
    return visit(find, {take, const_cast<Use*>(&use)});
}

template <class Use>
bool visitPrefixes(const TextFind& find, const Use& use) {
    return visitBy(
        find, [](auto& keys, const auto& found) { return scanPrefixes(keys, found); }, use);
}

template <class Use>
bool visitClassic(const TextFind& find, const Use& use) {
    if (find.handle.isSet) return true;
    const std::size_t size = find.text.empty() ? 0 : strnlen(find.text.data(), find.text.size());
    const Utf8Text text(find.text.data(), size);
    ImageKeys<Utf8Text> keys(firstCells(find), text, kAlphabet);
    return visitIn(
        keys, text, find.options.unit,
        [](auto& some, const auto& found) { return scanLongestKeys(some, found); }, use);
}

// ---- All at once, which takes less time ----

template <class Search, class Use>
void listBy(const TextFind& find, EncodedText::Illegal illegal, const Search& search,
            const Use& use) {
    const EncodedText text(find.text.data(), find.text.size(), illegal);
    TextUnits<EncodedText> units(text, find.options.unit);
    search(TextSearch(firstCells(find), text),
           [&](std::size_t from, std::size_t end, std::int32_t feature) {
               use(units.measure(from, end), KeyAt{end, 0, feature});
           });
}

template <class Search, class Use>
void listSetBy(const TextFind& find, const Search& search, const Use& use) {
    const SetText text(find.handle.images, find.text,
                       [](const auto& image) { return image->isFolded(); });
    TextUnits<EncodedText> units(text.any(), find.options.unit);
    search(SetSearch(find.handle.images, rulesOf(find), text),
           [&](const SetKey& found) { use(units.measure(found.from, found.key.end), found.key); });
}

template <class Use>
void listAll(const TextFind& find, const Use& use) {
    if (!isPlain(find)) {
        return listSetBy(
            find, [](const SetSearch& search, const auto& found) { search.forEachKey(found); },
            use);
    }
    listBy(
        find, EncodedText::kPassOver,
        [](const TextSearch& search, const auto& found) { search.forEachKey(kAlphabet, found); },
        use);
}

template <class Use>
void listLongestOfOne(const TextFind& find, EncodedText::Illegal illegal, const Use& use) {
    listBy(
        find, illegal,
        [](const TextSearch& search, const auto& found) {
            search.forEachLongestKey(kAlphabet, found);
        },
        use);
}

template <class Use>
void listLongest(const TextFind& find, const Use& use) {
    if (isPlain(find)) return listLongestOfOne(find, EncodedText::kPassOver, use);
    listSetBy(
        find, [](const SetSearch& search, const auto& found) { search.forEachLongestKey(found); },
        use);
}

template <class Use>
void listSegments(const TextFind& find, const Use& use) {
    if (find.options.unknownPieces) {
        visitPieces<visitSegments>(find, use);
        return;
    }
    if (!isPlain(find)) {
        return listSetBy(
            find, [](const SetSearch& search, const auto& found) { search.forEachSegment(found); },
            use);
    }
    listBy(
        find, EncodedText::kPassOver,
        [](const TextSearch& search, const auto& found) { search.forEachSegment(found); }, use);
}

template <class Use>
void listClassic(const TextFind& find, const Use& use) {
    if (find.handle.isSet) return;
    listLongestOfOne(find, EncodedText::kStopAtIllegal, use);
}

template <class Use>
using Visit = bool (*)(const TextFind& find, const Use& use);
template <class Use>
using List = void (*)(const TextFind& find, const Use& use);

// What is listed no faster than one by one.
template <class Use, Visit<Use> visit>
void listVisited(const TextFind& find, const Use& use) {
    visit(find, use);
}

// By the mode's number.
template <class Use>
constexpr Visit<Use> kVisits[] = {visitAll<Use>,
                                  visitLongest<Use>,
                                  visitPieces<visitSegments, Use>,
                                  visitPieces<visitCheapest, Use>,
                                  visitPrefixes<Use>,
                                  visitClassic<Use>};
template <class Use>
constexpr List<Use> kLists[] = {listAll<Use>,
                                listLongest<Use>,
                                listSegments<Use>,
                                listVisited<Use, visitPieces<visitCheapest, Use>>,
                                listVisited<Use, visitPrefixes<Use>>,
                                listClassic<Use>};

template <class Use>
void listByMode(const TextFind& find, const Use& use) {
    kLists<Use>[find.options.mode](find, use);
}

}  // namespace

void listMatches(const TextFind& find, MatchList& list) {
    listByMode(find, ToList{find.handle.images, list});
}

void listColumns(const TextFind& find, std::uint32_t text, ColumnList& columns) {
    listByMode(find, ToColumns{text, columns});
}

bool visitMatches(const TextFind& find, const MatchTaker& taker) {
    const ToTaker use = {find.handle.images, taker};
    return kVisits<ToTaker>[find.options.mode](find, use);
}

bool containsKey(const TextFind& find) {
    return !visitLongest(find, [](const Stretch&, const KeyAt&) { return false; });
}

}  // namespace Dictionary
