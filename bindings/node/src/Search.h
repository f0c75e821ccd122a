// The options of a search, from JavaScript to the library.

#ifndef DICTIONARY_NODE_SEARCH_H
#define DICTIONARY_NODE_SEARCH_H

#include "Dictionary.h"
#include "Functions.h"
#include "Image.h"
#include "Napi.h"
#include "Segmenter.h"

namespace Dictionary::Node {

// A search of an image. It is read from the first four arguments: the image, the name of the mode,
// the options or undefined, a segmenter or undefined.
class Search {
public:
    explicit Search(const Call& call);

    const Image& image() const { return m_image; }
    const DictionaryHandle* handle() const { return m_image->handle(); }
    const DictionaryFindOptions& options() const { return m_options; }

    static constexpr std::size_t kArguments = 4;

private:
    void setSegmenter(Segmenter segmenter);

    Image m_image;
    Segmenter m_segmenter;
    DictionaryFindOptions m_options = {};
};

}  // namespace Dictionary::Node

#endif
