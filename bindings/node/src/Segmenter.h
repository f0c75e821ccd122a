// Segmenters by weight, and the function that makes them.

#ifndef DICTIONARY_NODE_SEGMENTER_H
#define DICTIONARY_NODE_SEGMENTER_H

#include <memory>

#include "Dictionary.h"
#include "Functions.h"
#include "Image.h"

namespace Dictionary::Node {

// A segmenter that keeps its image open.
class OpenSegmenter {
public:
    OpenSegmenter(Image image, const DictionarySegmenterOptions& options);

    const DictionarySegmenter* get() const { return m_segmenter.get(); }

private:
    Image m_image;
    std::unique_ptr<DictionarySegmenter, void (*)(DictionarySegmenter*)> m_segmenter;
};

// Shared by a JavaScript segmenter and every search with it that is under way.
using Segmenter = std::shared_ptr<const OpenSegmenter>;

Functions segmenterFunctions();

}  // namespace Dictionary::Node

#endif
