#include "Finding.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Dictionary.h"
#include "Failure.h"
#include "Napi.h"
#include "Search.h"
#include "Utf8String.h"

namespace Dictionary::Node {

namespace {

// Matches in the form that is quickest to hand over: the start, the end and the number of the data
// text of each. So each data text becomes a string only once.
class Found {
public:
    Found(Search search, const Utf16Texts& texts) : m_search(std::move(search)) {
        DictionaryMatches matches = {};
        const std::unique_ptr<DictionaryMatches, void (*)(DictionaryMatches*)> owner(
            &matches, dictionaryFreeMatches);
        find(Utf8Strings(texts), matches);
        m_spans.reserve(kNumbersOfMatch * matches.count);
        for (std::size_t i = 0; i < matches.count; ++i) add(matches.items[i]);
    }

    // {spans, ends, data, images}: the spans of text i end before number ends[i].
    napi_value toJs(const Env& env) const {
        std::vector<napi_value> data;
        data.reserve(m_data.size());
        for (const std::string_view text : m_data) data.push_back(env.string(text));
        return env.object({{"spans", env.uint32Array(m_spans)},
                           {"ends", env.uint32Array(m_ends)},
                           {"data", env.array(data)},
                           {"images", env.uint32Array(m_images)}});
    }

private:
    static constexpr std::size_t kNumbersOfMatch = 3;
    static constexpr std::uint32_t kNoData = UINT32_MAX;

    void find(const Utf8Strings& texts, DictionaryMatches& matches) {
        std::vector<std::size_t> ends(texts.size());
        DictionaryError error = {};
        dictionaryFindInTexts(m_search.handle(), &m_search.options(), texts.data(), texts.size(),
                              &matches, ends.data(), &error);
        throwUnlessOk(error);
        for (const std::size_t end : ends) {
            m_ends.push_back(static_cast<std::uint32_t>(kNumbersOfMatch * end));
        }
    }

    void add(const DictionaryMatch& match) {
        const auto start = static_cast<std::uint32_t>(match.start);
        const auto length = static_cast<std::uint32_t>(match.length);
        m_spans.insert(m_spans.end(), {start, start + length, numberOf(match)});
    }

    // The number of the match's data text among those that are handed over.
    std::uint32_t numberOf(const DictionaryMatch& match) {
        if (match.data.bytes == nullptr) return kNoData;
        constexpr unsigned kBitsOfNumber = 32;
        const std::uint64_t place = std::uint64_t{match.image} << kBitsOfNumber | match.dataNumber;
        const auto next = static_cast<std::uint32_t>(m_data.size());
        const auto [known, isNew] = m_numbers.emplace(place, next);
        if (isNew) {
            m_data.emplace_back(match.data.bytes, match.data.size);
            m_images.push_back(match.image);
        }
        return known->second;
    }

    Search m_search;  // keeps the data texts alive
    std::vector<std::uint32_t> m_spans;
    std::vector<std::uint32_t> m_ends;
    std::vector<std::string_view> m_data;
    std::vector<std::uint32_t> m_images;
    std::unordered_map<std::uint64_t, std::uint32_t> m_numbers;  // of data texts
};

// find(...search, texts): what Found::toJs makes
Job find(const Call& call) {
    return reporting([search = Search(call), texts = call[Search::kArguments].texts()]() -> Answer {
        const auto found = std::make_shared<const Found>(search, texts);
        return [found](const Env& env) { return found->toJs(env); };
    });
}

// ---- Columns

// The matches of texts, in columns that JavaScript uses in place.
class Columns {
public:
    Columns(const Search& search, const Utf16Texts& texts) {
        const Utf8Strings utf8(texts);
        DictionaryError error = {};
        dictionaryFindColumns(search.handle(), &search.options(), utf8.data(), utf8.size(),
                              &m_columns, &error);
        if (error.code == DICTIONARY_OK) return;
        dictionaryFreeColumns(&m_columns);
        throw Failure(error);
    }
    Columns(const Columns&) = delete;
    ~Columns() { dictionaryFreeColumns(&m_columns); }

    static napi_value toJs(const Env& env, const std::shared_ptr<const Columns>& columns) {
        const DictionaryColumns& all = columns->m_columns;
        const auto column = [&](std::uint32_t* numbers) {
            return env.uint32Array(numbers, all.count, columns);
        };
        return env.object({{"text", column(all.text)},
                           {"start", column(all.start)},
                           {"end", column(all.end)},
                           {"dataNumber", column(all.dataNumber)},
                           {"image", column(all.image)}});
    }

private:
    DictionaryColumns m_columns = {};
};

// findColumns(...search, texts): the columns
Job findColumns(const Call& call) {
    return reporting([search = Search(call), texts = call[Search::kArguments].texts()]() -> Answer {
        const auto columns = std::make_shared<const Columns>(search, texts);
        return [columns](const Env& env) { return Columns::toJs(env, columns); };
    });
}

// contains(...search, text): whether any key is in the text
Job contains(const Call& call) {
    return reporting([search = Search(call), text = call[Search::kArguments].text()]() -> Answer {
        bool contains = false;
        DictionaryError error = {};
        dictionaryContainsKey(search.handle(), &search.options(), Utf8String(text), &contains,
                              &error);
        throwUnlessOk(error);
        return [contains](const Env& env) { return env.boolean(contains); };
    });
}

}  // namespace

Functions findFunctions() {
    return {
        {"find", runNow<find>},
        {"findLater", runLater<find>},
        {"findColumns", runNow<findColumns>},
        {"findColumnsLater", runLater<findColumns>},
        {"contains", runNow<contains>},
    };
}

}  // namespace Dictionary::Node
