#include "Image.h"

#include <algorithm>
#include <cstdint>
#include <memory>

#include "Napi.h"

namespace Dictionary::Node {

Image OpenImage::fromFile(const std::string& path, int mode) {
    const auto image = std::make_shared<OpenImage>();
    DictionaryError error = {};
    image->take(dictionaryOpenFile(path.c_str(), mode, &error), error);
    return image;
}

Image OpenImage::fromBytes(std::string bytes) {
    const auto image = std::make_shared<OpenImage>();
    image->m_bytes = std::move(bytes);
    DictionaryError error = {};
    image->take(dictionaryOpenBytes({image->m_bytes.data(), image->m_bytes.size()},
                                    DICTIONARY_OPEN_BORROW, &error),
                error);
    return image;
}

Image OpenImage::ofSet(std::vector<Image> parts) {
    const auto image = std::make_shared<OpenImage>();
    std::vector<const DictionaryHandle*> handles;
    for (const Image& part : parts) handles.push_back(part->handle());
    image->m_parts = std::move(parts);
    DictionaryError error = {};
    image->take(dictionaryOpenSet(handles.data(), handles.size(), &error), error);
    return image;
}

void OpenImage::take(DictionaryHandle* handle, const DictionaryError& error) {
    if (handle == nullptr) throw Failure(error);
    m_handle.reset(handle);
}

namespace {

Answer answerOf(Image image) {
    return [image = std::move(image)](const Env& env) { return env.external(image); };
}

// open(path, copy): an image
Job open(const Call& call) {
    const int mode = call[1].flag() ? DICTIONARY_OPEN_COPY : DICTIONARY_OPEN_SHARE;
    return reporting(
        [path = call[0].path(), mode] { return answerOf(OpenImage::fromFile(path, mode)); });
}

// openBytes(bytes): an image
Job openBytes(const Call& call) {
    return reporting([bytes = call[0].bytes()] { return answerOf(OpenImage::fromBytes(bytes)); });
}

// openSet(images): an image
Job openSet(const Call& call) {
    std::vector<Image> parts;
    for (const Value& part : call[0].elements()) parts.push_back(part.external<Image>());
    return reporting([parts] { return answerOf(OpenImage::ofSet(parts)); });
}

// close(image)
napi_value close(const Call& call) {
    call[0].external<Image>().reset();
    return call.env().undefined();
}

// describe(image)
Job describe(const Call& call) {
    return reporting([image = call[0].external<Image>()]() -> Answer {
        DictionaryDescription description = {};
        description.size = sizeof description;
        DictionaryError error = {};
        dictionaryDescribe(image->handle(), &description, &error);
        throwUnlessOk(error);
        return [description](const Env& env) {
            const auto count = [&env](std::uint64_t n) {
                return env.number(static_cast<double>(n));
            };
            return env.object({{"keys", count(description.keys)},
                               {"imageBytes", count(description.imageBytes)},
                               {"cells", count(description.cells)},
                               {"featureBytes", count(description.featureBytes)},
                               {"folded", env.boolean(description.folded)}});
        };
    });
}

// imageBytes(image): a copy
napi_value imageBytes(const Call& call) {
    const DictionaryText bytes = dictionaryImageBytes(call[0].external<Image>()->handle(), 0);
    const auto copy = std::make_shared<std::string>(bytes.bytes, bytes.size);
    return call.env().uint8Array(copy->data(), copy->size(), copy);
}

}  // namespace

Functions imageFunctions() {
    return {
        {"open", runNow<open>},           {"openLater", runLater<open>},
        {"openBytes", runNow<openBytes>}, {"openBytesLater", runLater<openBytes>},
        {"openSet", runNow<openSet>},     {"close", direct<close>},
        {"describe", runNow<describe>},   {"imageBytes", direct<imageBytes>},
    };
}

}  // namespace Dictionary::Node
