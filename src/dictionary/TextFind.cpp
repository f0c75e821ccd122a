#include "TextFind.h"

#include <cstddef>
#include <cstring>

#include "EncodedText.h"
#include "KeyScan.h"
#include "LabelText.h"
#include "PieceFind.h"
#include "TextSearch.h"
#include "TextUnits.h"
#include "Utf8Text.h"

namespace Dictionary {

namespace {

// Makes matches of the keys found in a text, which must come by their starts.
template <class Text>
class MatchMaker {
public:
    MatchMaker(const TextFind& find, const Text& text)
        : m_find(find), m_units(text, find.options.unit) {}

    DictionaryMatch operator()(std::size_t from, std::size_t end, std::int32_t feature) {
        const Stretch stretch = m_units.measure(from, end);
        const std::string_view data = m_find.image.view().featureText(feature);
        return {stretch.start,
                stretch.length,
                {data.empty() ? "" : data.data(), data.size()},
                static_cast<std::uint32_t>(feature),
                m_find.imageNumber};
    }

private:
    const TextFind& m_find;
    TextUnits<Text> m_units;
};

const CellView& cellsOf(const TextFind& find) {
    return find.image.view().cells();
}

// ---- One by one ----

template <class Text, class Scan>
bool visitBy(const TextFind& find, const Text& text, const MatchTaker& taker, const Scan& scan) {
    MatchMaker<Text> make(find, text);
    return scan(cellsOf(find), text, kAlphabet,
                [&](std::size_t from, std::size_t end, std::int32_t feature) {
                    return taker(make(from, end, feature));
                });
}

bool visitAll(const TextFind& find, const MatchTaker& taker) {
    return visitBy(find, LabelText(find.text), taker,
                   [](const auto&... given) { return scanAllKeys(given...); });
}

bool visitLongest(const TextFind& find, const MatchTaker& taker) {
    return visitBy(find, LabelText(find.text), taker,
                   [](const auto&... given) { return scanLongestKeys(given...); });
}

bool visitPrefixes(const TextFind& find, const MatchTaker& taker) {
    return visitBy(find, LabelText(find.text), taker,
                   [](const auto&... given) { return scanPrefixes(given...); });
}

bool visitClassic(const TextFind& find, const MatchTaker& taker) {
    const std::size_t size = find.text.empty() ? 0 : strnlen(find.text.data(), find.text.size());
    return visitBy(find, Utf8Text(find.text.data(), size), taker,
                   [](const auto&... given) { return scanLongestKeys(given...); });
}

// ---- All at once, which takes less time ----

template <class Search>
void listBy(const TextFind& find, EncodedText::Outsiders outsiders, MatchList& list,
            const Search& search) {
    const EncodedText text(find.text.data(), find.text.size(), outsiders);
    MatchMaker<EncodedText> make(find, text);
    search(TextSearch(cellsOf(find), text),
           [&](std::size_t from, std::size_t end, std::int32_t feature) {
               list.add(make(from, end, feature));
           });
}

void listAll(const TextFind& find, MatchList& list) {
    listBy(find, EncodedText::kPassOver, list, [](const TextSearch& search, const auto& found) {
        search.forEachKey(kAlphabet, found);
    });
}

void listLongest(const TextFind& find, MatchList& list) {
    listBy(find, EncodedText::kPassOver, list, [](const TextSearch& search, const auto& found) {
        search.forEachLongestKey(kAlphabet, found);
    });
}

void listClassic(const TextFind& find, MatchList& list) {
    listBy(find, EncodedText::kStopAtIllegal, list,
           [](const TextSearch& search, const auto& found) {
               search.forEachLongestKey(kAlphabet, found);
           });
}

template <bool (*visit)(const TextFind&, const MatchTaker&)>
void listVisited(const TextFind& find, MatchList& list) {
    const auto add = [](void* context, const DictionaryMatch* match) {
        static_cast<MatchList*>(context)->add(*match);
        return true;
    };
    visit(find, {add, &list});
}

void listSegments(const TextFind& find, MatchList& list) {
    if (find.options.unknownPieces) return listVisited<visitSegments>(find, list);
    listBy(find, EncodedText::kPassOver, list,
           [](const TextSearch& search, const auto& found) { search.forEachSegment(found); });
}

struct Mode {
    void (*list)(const TextFind&, MatchList&);
    bool (*visit)(const TextFind&, const MatchTaker&);
};

// By number.
constexpr Mode kModes[] = {
    {listAll, visitAll},
    {listLongest, visitLongest},
    {listSegments, visitSegments},
    {listVisited<visitCheapest>, visitCheapest},
    {listVisited<visitPrefixes>, visitPrefixes},
    {listClassic, visitClassic},
};

}  // namespace

void listMatches(const TextFind& find, MatchList& list) {
    kModes[find.options.mode].list(find, list);
}

bool visitMatches(const TextFind& find, const MatchTaker& taker) {
    return kModes[find.options.mode].visit(find, taker);
}

bool containsKey(const OpenImage& image, std::string_view text) {
    return !scanLongestKeys(image.view().cells(), LabelText(text), kAlphabet,
                            [](std::size_t, std::size_t, std::int32_t) { return false; });
}

}  // namespace Dictionary
