// Open images and sets of them, and the functions that open and describe them.

#ifndef DICTIONARY_NODE_IMAGE_H
#define DICTIONARY_NODE_IMAGE_H

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Dictionary.h"
#include "Failure.h"
#include "Functions.h"

namespace Dictionary::Node {

// A handle with what it needs: bytes in memory, or the images of a set.
class OpenImage {
public:
    static std::shared_ptr<const OpenImage> fromFile(const std::string& path, int mode);
    static std::shared_ptr<const OpenImage> fromBytes(std::string bytes);
    static std::shared_ptr<const OpenImage> ofSet(
        std::vector<std::shared_ptr<const OpenImage>> parts);

    const DictionaryHandle* handle() const { return m_handle.get(); }
    bool isSet() const { return !m_parts.empty(); }

private:
    void take(DictionaryHandle* handle, const DictionaryError& error);

    std::string m_bytes;
    std::vector<std::shared_ptr<const OpenImage>> m_parts;
    std::unique_ptr<DictionaryHandle, void (*)(DictionaryHandle*)> m_handle{nullptr,
                                                                            dictionaryClose};
};

// Shared by an open dictionary and every search in it that is under way.
using Image = std::shared_ptr<const OpenImage>;

Functions imageFunctions();

}  // namespace Dictionary::Node

#endif
