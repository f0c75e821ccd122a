#include "ImageSearch.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "EncodedText.h"
#include "ImageFormat.h"
#include "ResultText.h"
#include "TextSearch.h"

namespace Dictionary {

char* searchImage(const void* image, ICoderInterface& coder, const char* text, bool withFeatures) {
    ResultText list(withFeatures);
    if (image == nullptr || text == nullptr) return list.release();
    const ImageView view(image);
    const EncodedText encoded(coder, text, -1, false);
    const TextSearch search(view.cells(), encoded);
    search.forEachLongestKey(coder.getNumOfSingleWord(), [&](std::size_t from, std::size_t end,
                                                             std::int32_t feature) {
        const SPOS span = encoded.span(from, end, feature);
        const auto position = static_cast<std::size_t>(span.start);
        const auto length = static_cast<std::size_t>(span.end + 1 - span.start);
        const std::string_view data = withFeatures ? view.featureText(feature) : std::string_view();
        list.add({text + position, length}, position, data);
    });
    return list.release();
}

}  // namespace Dictionary
