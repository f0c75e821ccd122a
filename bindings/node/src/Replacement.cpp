#include "Replacement.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Dictionary.h"
#include "Failure.h"
#include "Napi.h"
#include "Search.h"
#include "Utf8String.h"

namespace Dictionary::Node {

namespace {

// What replaces keys.
class Rule {
public:
    // From the options, which may be undefined.
    explicit Rule(const Value& given) {
        const Value field = given.member("field");
        const Value alternatives = given.member("alternatives");
        const Value removeEmpty = given.member("removeEmpty");
        if (!field.isUndefined()) m_field = field.count();
        if (!alternatives.isUndefined()) m_alternatives = alternatives.name();
        if (!removeEmpty.isUndefined()) m_removesEmpty = removeEmpty.flag();
    }

    DictionaryReplaceOptions options() const {
        DictionaryReplaceOptions options = {};
        options.size = sizeof options;
        options.field = m_field;
        options.alternatives = m_alternatives ? m_alternatives->c_str() : nullptr;
        options.removeEmpty = m_removesEmpty;
        return options;
    }

private:
    unsigned m_field = 1;
    std::optional<std::string> m_alternatives;
    bool m_removesEmpty = false;
};

// The result's units. What is between the edits is the text's own, unpaired surrogates included.
std::u16string resultUnits(const DictionaryReplacement& result, std::u16string_view text) {
    std::u16string units = unitsOf(std::string_view(result.bytes, result.size));
    std::size_t from = 0, to = 0;
    for (std::size_t i = 0; i <= result.editCount; ++i) {
        const bool isLast = i == result.editCount;
        const std::size_t end = isLast ? text.size() : result.edits[i].start;
        text.copy(units.data() + to, end - from, from);
        if (isLast) break;
        from = result.edits[i].end;
        to = result.edits[i].resultEnd;
    }
    return units;
}

// A text with its keys replaced: as UTF-8, or as units where UTF-8 cannot hold them, or where edits
// are wanted, which count units.
class Replaced {
public:
    Replaced(const Search& search, const Rule& rule, std::u16string_view text, bool wantsEdits) {
        const Utf8String utf8(text);
        const bool needsUnits = wantsEdits || !utf8.isWellFormed();
        DictionaryReplaceOptions options = rule.options();
        options.wantEdits = needsUnits;
        DictionaryReplacement result = {};
        const std::unique_ptr<DictionaryReplacement, void (*)(DictionaryReplacement*)> owner(
            &result, dictionaryFreeReplacement);
        DictionaryError error = {};
        dictionaryReplaceKeys(search.handle(), &search.options(), &options, utf8, &result, &error);
        throwUnlessOk(error);
        if (!needsUnits) {
            m_bytes.assign(result.bytes, result.size);
            return;
        }
        m_units = resultUnits(result, text);
        if (wantsEdits) takeEdits(result);
    }

    napi_value textToJs(const Env& env) const {
        return m_units ? env.string(*m_units) : env.string(m_bytes);
    }

    napi_value editsToJs(const Env& env) const { return env.uint32Array(m_edits); }

private:
    void takeEdits(const DictionaryReplacement& result) {
        for (std::size_t i = 0; i < result.editCount; ++i) {
            const DictionaryEdit& edit = result.edits[i];
            for (const std::size_t place :
                 {edit.start, edit.end, edit.resultStart, edit.resultEnd}) {
                m_edits.push_back(static_cast<std::uint32_t>(place));
            }
        }
    }

    std::string m_bytes;
    std::optional<std::u16string> m_units;
    std::vector<std::uint32_t> m_edits;
};

// replace(...search, texts): the results
Job replace(const Call& call) {
    return reporting([search = Search(call), rule = Rule(call[2]),
                      texts = call[Search::kArguments].texts()]() -> Answer {
        const auto results = std::make_shared<std::vector<Replaced>>();
        for (std::size_t i = 0; i < texts.size(); ++i) {
            results->emplace_back(search, rule, texts[i], false);
        }
        return [results](const Env& env) {
            std::vector<napi_value> list;
            for (const Replaced& result : *results) list.push_back(result.textToJs(env));
            return env.array(list);
        };
    });
}

// replaceWithEdits(...search, text): {text, edits}, four numbers for each edit
Job replaceWithEdits(const Call& call) {
    return reporting([search = Search(call), rule = Rule(call[2]),
                      text = call[Search::kArguments].text()]() -> Answer {
        const auto result = std::make_shared<const Replaced>(search, rule, text, true);
        return [result](const Env& env) {
            return env.object({{"text", result->textToJs(env)}, {"edits", result->editsToJs(env)}});
        };
    });
}

}  // namespace

Functions replaceFunctions() {
    return {
        {"replace", runNow<replace>},
        {"replaceLater", runLater<replace>},
        {"replaceWithEdits", runNow<replaceWithEdits>},
        {"replaceWithEditsLater", runLater<replaceWithEdits>},
    };
}

}  // namespace Dictionary::Node
