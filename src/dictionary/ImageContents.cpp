// The functions of Dictionary.h that show what an image holds.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "DataText.h"
#include "Dictionary.h"
#include "Errors.h"
#include "Handle.h"
#include "ImageFormat.h"
#include "OpenImage.h"

namespace Dictionary {

namespace {

constexpr char kFieldEnd = '\t';
constexpr char kRecordMark = ';';

DictionaryDescription describe(const DictionaryHandle& handle) {
    DictionaryDescription sums = {};
    sums.size = sizeof sums;
    sums.images = static_cast<std::uint32_t>(handle.images.size());
    sums.folded = handle.folded;
    for (const auto& image : handle.images) {
        sums.imageBytes += image->bytes().size();
        sums.cells += static_cast<std::uint64_t>(image->cellCount());
        sums.featureBytes += static_cast<std::uint64_t>(image->featureBytes());
        sums.keys += image->keyCount();
    }
    return sums;
}

const OpenImage* imageOf(const DictionaryHandle* handle, std::uint32_t number) {
    return handle == nullptr ? nullptr : handle->imageAt(number);
}

}  // namespace

}  // namespace Dictionary

using namespace Dictionary;

int dictionaryDescribe(const DictionaryHandle* handle, DictionaryDescription* description,
                       DictionaryError* error) {
    return guarded(error, [&] {
        requireArgument(handle != nullptr, "the handle is null");
        requireArgument(description != nullptr, "the description is null");
        requireArgument(description->size == sizeof *description,
                        "the description's size is not sizeof(DictionaryDescription)");
        *description = describe(*handle);
    });
}

DictionaryText dictionaryImageBytes(const DictionaryHandle* handle, uint32_t image) {
    const OpenImage* const open = imageOf(handle, image);
    if (open == nullptr) return kNoText;
    return {open->bytes().data(), open->bytes().size()};
}

DictionaryCell dictionaryCellAt(const DictionaryHandle* handle, uint32_t image, uint64_t index) {
    const OpenImage* const open = imageOf(handle, image);
    if (open == nullptr || index >= static_cast<std::uint64_t>(open->cellCount())) {
        return {-1, -1, -1};
    }
    const Cell cell = open->view().cells()[static_cast<std::int64_t>(index)];
    return {cell.base, cell.check, cell.feature};
}

DictionaryText dictionaryDataAt(const DictionaryHandle* handle, uint32_t image,
                                uint32_t dataNumber) {
    const OpenImage* const open = imageOf(handle, image);
    if (open == nullptr || !open->isRecord(dataNumber)) return kNoText;
    return dataText(open->view().featureText(static_cast<std::int32_t>(dataNumber)));
}

bool dictionaryNextField(DictionaryText* data, DictionaryField* field) {
    if (data == nullptr || field == nullptr || data->size == 0) return false;
    const bool isFirst = field->text.bytes == nullptr;
    std::string_view rest(data->bytes, data->size);
    field->beginsRecord = isFirst || rest.front() == kRecordMark;
    if (field->beginsRecord && !isFirst) rest.remove_prefix(1);
    const std::string_view text = rest.substr(0, rest.find(kFieldEnd));
    field->text = {text.data(), text.size()};
    rest.remove_prefix(text.size());
    if (!rest.empty()) rest.remove_prefix(1);
    *data = {rest.data(), rest.size()};
    return true;
}
