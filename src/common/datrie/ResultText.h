// Helper, not installed: the result string of a search, built in place in memory that the caller
// releases with free().

#ifndef DICTIONARY_RESULT_TEXT_H
#define DICTIONARY_RESULT_TEXT_H

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace Dictionary {

class ResultText {
public:
    explicit ResultText(bool withFeatures) : m_withFeatures(withFeatures) {}

    // Appends `word` and a tab; with features: `word`, "/", `position` (its byte offset in the
    // text), ":", `feature` and a tab.
    void add(std::string_view word, std::size_t position, std::string_view feature);

    // Hands the text over, NUL-terminated. Never null.
    char* release();

private:
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };

    char* room(std::size_t bytes);

    bool m_withFeatures;
    std::unique_ptr<char, Free> m_text;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

}  // namespace Dictionary

#endif
