#include "Search.h"

#include <string>
#include <utility>

namespace Dictionary::Node {

namespace {

struct Mode {
    const char* name;
    DictionaryFindMode mode;
};

constexpr Mode kModes[] = {
    {"all", DICTIONARY_FIND_ALL},
    {"longest", DICTIONARY_FIND_LONGEST},
    {"segment", DICTIONARY_FIND_SEGMENT},
    {"prefixes", DICTIONARY_FIND_PREFIXES},
};

struct Flag {
    const char* name;
    bool DictionaryFindOptions::*flag;
};

constexpr Flag kFlags[] = {
    {"wholeWords", &DictionaryFindOptions::wholeWords},
    {"everyImage", &DictionaryFindOptions::everyImage},
    {"unknownPieces", &DictionaryFindOptions::unknownPieces},
    {"joinedRuns", &DictionaryFindOptions::joinedRuns},
};

int modeOf(const Env& env, const std::string& name) {
    for (const Mode& mode : kModes) {
        if (name == mode.name) return mode.mode;
    }
    env.throwTypeError("The mode is 'all', 'longest', 'segment' or 'prefixes'");
}

void readFlags(const Value& given, DictionaryFindOptions& options) {
    if (given.isUndefined()) return;
    for (const auto& [name, flag] : kFlags) {
        const Value value = given.member(name);
        if (!value.isUndefined()) options.*flag = value.flag();
    }
}

}  // namespace

Search::Search(const Call& call) : m_image(call[0].external<Image>()) {
    m_options.size = sizeof m_options;
    m_options.unit = DICTIONARY_UNIT_UTF16;
    m_options.mode = modeOf(call.env(), call[1].name());
    readFlags(call[2], m_options);
    if (!call[3].isUndefined()) setSegmenter(call[3].external<Segmenter>());
}

void Search::setSegmenter(Segmenter segmenter) {
    m_segmenter = std::move(segmenter);
    m_options.mode = DICTIONARY_FIND_WEIGHTED;
    m_options.segmenter = m_segmenter->get();
}

}  // namespace Dictionary::Node
