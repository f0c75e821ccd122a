#include "Segmenter.h"

#include <utility>

#include "Failure.h"
#include "Napi.h"

namespace Dictionary::Node {

OpenSegmenter::OpenSegmenter(Image image, const DictionarySegmenterOptions& options)
    : m_image(std::move(image)), m_segmenter(nullptr, dictionaryFreeSegmenter) {
    DictionaryError error = {};
    m_segmenter.reset(dictionaryMakeSegmenter(m_image->handle(), &options, &error));
    throwUnlessOk(error);
}

namespace {

// makeSegmenter(image, field, unknownCost): {image, segmenter}. The image is to be closed with the
// segmenter. Without unknownCost, the field has counts, else costs.
Job makeSegmenter(const Call& call) {
    DictionarySegmenterOptions options = {};
    options.size = sizeof options;
    options.field = call[1].count();
    if (!call[2].isUndefined()) {
        options.weights = DICTIONARY_WEIGHTS_COSTS;
        options.unknownCost = call[2].number();
    }
    return reporting([image = call[0].external<Image>(), options]() -> Answer {
        const Segmenter segmenter = std::make_shared<const OpenSegmenter>(image, options);
        return [image, segmenter](const Env& env) {
            return env.object(
                {{"image", env.external(image)}, {"segmenter", env.external(segmenter)}});
        };
    });
}

// freeSegmenter(segmenter)
napi_value freeSegmenter(const Call& call) {
    call[0].external<Segmenter>().reset();
    return call.env().undefined();
}

}  // namespace

Functions segmenterFunctions() {
    return {
        {"makeSegmenter", runNow<makeSegmenter>},
        {"freeSegmenter", direct<freeSegmenter>},
    };
}

}  // namespace Dictionary::Node
