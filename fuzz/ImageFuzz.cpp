// Images that are accepted, behind which lies a page that cannot be read: no lookup reaches it. An
// input is the size of a text in one byte, the text, and the image. The corpus holds sound images.

#include "BoundaryText.h"
#include "DATInterface.h"
#include "DATMatch.h"
#include "DATReader.h"
#include "Fuzz.h"
#include "ImageCheck.h"
#include "ImageHandle.h"
#include "LetterCoder.h"

namespace {

using Dictionary::ICoderInterface;

void lookUp(ICoderInterface& coder, char* image, const std::string& text, bool reverse) {
    Dictionary::CDATReader reader(&coder, image, reverse);
    std::string feature;
    std::vector<Dictionary::SPOS> records;
    std::vector<std::vector<std::pair<int, std::string>>> groups;
    reader.exactMatch(text.c_str(), feature);
    reader.maxMatch(text.c_str(), records);
    reader.allMatch(text.c_str(), groups, false, -1);
}

void lookUp(void* handle, const std::string& text) {
    DictionaryMatches list = {nullptr, 0, 0};
    std::string data;
    for (int mode = DICTIONARY_FIND_ALL; mode <= DICTIONARY_FIND_AS_SEARCH; ++mode) {
        require(
            dictionaryFind(handle, mode, DICTIONARY_UNIT_UTF16, text.data(), text.size(), &list),
            "a short text can be searched");
        for (std::size_t i = 0; i < list.count; ++i) {
            data.append(list.items[i].data, list.items[i].dataLength);
        }
    }
    dictionaryReleaseMatches(&list);
    const char* found = nullptr;
    std::size_t size = 0;
    dictionaryLookup(handle, text.data(), text.size(), &found, &size);
    freeResult(search(text.c_str(), handle, true));
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::string text = input.text(input.byte());
    const std::string image = input.rest();
    const GuardedBytes guarded(image);
    LetterCoder letters;
    Dictionary::CUTF8Coder utf8;
    for (ICoderInterface* const coder :
         {static_cast<ICoderInterface*>(&letters), static_cast<ICoderInterface*>(&utf8)}) {
        const DictionaryImageFault fault =
            Dictionary::checkImage(guarded.data(), image.size(), coder->getNumOfSingleWord());
        require(fault.text != nullptr && fault.offset < static_cast<std::int64_t>(image.size()),
                "a fault lies in the image");
        if (fault.code != DICTIONARY_IMAGE_OK) continue;
        for (const bool reverse : {false, true}) lookUp(*coder, guarded.data(), text, reverse);
    }
    if (!dictionaryVerify(guarded.data(), image.size(), nullptr)) return 0;
    void* const handle = Dictionary::ImageHandle::make(guarded.data(), image.size());
    lookUp(handle, text);
    destroyBin(handle);
    return 0;
}
