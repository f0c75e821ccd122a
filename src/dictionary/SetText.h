// Helper, not installed: a text as the images of a set read it, folded or not.

#ifndef DICTIONARY_SET_TEXT_H
#define DICTIONARY_SET_TEXT_H

#include <optional>
#include <string_view>

#include "EncodedText.h"
#include "Folding.h"

namespace Dictionary {

class SetText {
public:
    // Reads `text` in each form that the images need. `isFolded(image)` says which one that is.
    template <class Images, class IsFolded>
    SetText(const Images& images, std::string_view text, IsFolded isFolded) {
        for (const auto& image : images) addForm(isFolded(image), text);
    }

    const EncodedText& of(bool isFolded) const { return isFolded ? *m_folded : *m_plain; }
    // Folded or not, the text has the same places.
    const EncodedText& any() const { return of(!m_plain.has_value()); }

private:
    void addForm(bool isFolded, std::string_view text) {
        if (isFolded && !m_folded.has_value()) {
            m_folded.emplace(text.data(), text.size(), FoldedCode());
        }
        if (!isFolded && !m_plain.has_value()) {
            m_plain.emplace(text.data(), text.size(), EncodedText::kPassOver);
        }
    }

    std::optional<EncodedText> m_plain;
    std::optional<EncodedText> m_folded;
};

}  // namespace Dictionary

#endif
