// Searches images that are accepted, followed by a page that cannot be read: no lookup may reach
// it. An input is the size of a text in one byte, the text, and the image. The corpus holds sound
// images.

#include "BoundaryText.h"
#include "DATInterface.h"
#include "DATReader.h"
#include "Dictionary.h"
#include "Fuzz.h"
#include "ImageCheck.h"
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

void lookUp(DictionaryHandle* handle, const std::string& text) {
    DictionaryMatches list = {};
    DictionaryFindOptions options = {};
    options.size = sizeof options;
    options.unit = DICTIONARY_UNIT_UTF16;
    const DictionaryText searched = {text.data(), text.size()};
    std::string data;
    const auto add = [](void* all, const DictionaryMatch* match) {
        static_cast<std::string*>(all)->append(match->data.bytes, match->data.size);
        return true;
    };
    for (const int mode : {DICTIONARY_FIND_ALL, DICTIONARY_FIND_LONGEST, DICTIONARY_FIND_SEGMENT,
                           DICTIONARY_FIND_PREFIXES, DICTIONARY_FIND_CLASSIC}) {
        options.mode = mode;
        require(dictionaryFindMatches(handle, &options, searched, &list, nullptr) == DICTIONARY_OK,
                "a short text can be searched");
        for (std::size_t i = 0; i < list.count; ++i) add(&data, &list.items[i]);
        dictionaryVisitMatches(handle, &options, searched, add, &data, nullptr);
    }
    dictionaryFreeMatches(&list);
    bool contains = false;
    dictionaryContainsKey(handle, nullptr, searched, &contains, nullptr);
    DictionaryText found;
    if (dictionaryLookupKey(handle, searched, &found)) data.append(found.bytes, found.size);
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
        const Dictionary::ImageFault fault =
            Dictionary::checkImage(guarded.data(), image.size(), coder->getNumOfSingleWord());
        require(fault.text != nullptr && fault.offset < static_cast<std::int64_t>(image.size()),
                "a fault is inside the image");
        if (fault.code != DICTIONARY_OK) continue;
        for (const bool reverse : {false, true}) lookUp(*coder, guarded.data(), text, reverse);
    }
    DictionaryHandle* const handle =
        dictionaryOpenBytes({guarded.data(), image.size()}, DICTIONARY_OPEN_BORROW, nullptr);
    if (handle == nullptr) return 0;
    lookUp(handle, text);
    dictionaryClose(handle);
    return 0;
}
