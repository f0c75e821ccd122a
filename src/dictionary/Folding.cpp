#include "Folding.h"

#include <cstddef>

#include "ImageFormat.h"
#include "Utf8Decoder.h"
#include "Utf8Encoder.h"

namespace Dictionary {

void foldUtf8(std::string_view text, std::string& result) {
    constexpr std::int32_t kIllegal = -1;
    result.clear();
    decodeAllUtf8(text.data(), text.size(), kIllegal,
                  [&](std::int32_t code, std::size_t start, std::uint32_t length) {
                      const std::int32_t other = code == kIllegal ? code : folded(code);
                      if (other == code) {
                          result.append(text, start, length);
                      } else {
                          appendUtf8(other, result);
                      }
                  });
}

bool isFoldedImage(const void* image) {
    const Cell header = headerOf(image);
    const char* const record = static_cast<const char*>(image) + cellBytesOf(header);
    const auto size = static_cast<std::size_t>(featureBytesOf(header));
    if (size < kRecordLengthBytes + kFoldedMark.size()) return false;
    const auto length = static_cast<std::size_t>(recordLengthAt(record));
    return length == kFoldedMark.size() &&
           std::string_view(record + kRecordLengthBytes, length) == kFoldedMark;
}

}  // namespace Dictionary
