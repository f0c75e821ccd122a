#include "Image.h"

#include "DATInterface.h"
#include "File.h"

namespace dictool {

namespace {

// By DictionaryImageCode.
constexpr const char* kFaultNames[] = {"ok",        "cannot-read", "no-memory", "too-short",
                                       "too-large", "header",      "area",      "free-cell",
                                       "parent",    "label",       "base",      "feature"};

std::string whereOf(const DictionaryImageFault& fault) {
    if (fault.offset < 0) return "";
    const std::string byte = "byte " + std::to_string(fault.offset);
    if (fault.cell < 0) return " (" + byte + ")";
    return " (cell " + std::to_string(fault.cell) + ", " + byte + ")";
}

Buffer verifiedBytes(const std::string& file) {
    Buffer bytes = readWhole(file);
    DictionaryImageFault fault;
    if (!dictionaryVerify(bytes.data(), bytes.size(), &fault)) throw imageFailure(file, fault);
    return bytes;
}

}  // namespace

Failure imageFailure(const std::string& file, const DictionaryImageFault& fault) {
    const bool system =
        fault.code == DICTIONARY_IMAGE_UNREADABLE || fault.code == DICTIONARY_IMAGE_NO_MEMORY;
    std::string text = fault.text + whereOf(fault);
    if (fault.systemError != 0) text += ": " + systemText(fault.systemError);
    text += system ? "; name an image file that you may read"
                   : "; build the image anew from its source";
    return {system ? kTrouble : kBadImage, {file}, kFaultNames[fault.code], text};
}

Handle::Handle(const std::string& file) {
    DictionaryImageFault fault;
    m_handle = dictionaryOpen(file.c_str(), DICTIONARY_OPEN_MAP, &fault);
    if (m_handle == nullptr) throw imageFailure(file, fault);
}

Handle::~Handle() {
    destroyBin(m_handle);
}

Image::Image(const std::string& file)
    : m_file(file), m_bytes(verifiedBytes(file)), m_view(m_bytes.data()) {}

}  // namespace dictool
