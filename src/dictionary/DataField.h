// Helper, not installed: one field of a key's data.

#ifndef DICTIONARY_DATA_FIELD_H
#define DICTIONARY_DATA_FIELD_H

#include <optional>
#include <string_view>

#include "Dictionary.h"

namespace Dictionary {

// Field `number`, counted from 1, of the first record in a data text; none if it has fewer fields.
inline std::optional<std::string_view> fieldOfFirstRecord(std::string_view data, unsigned number) {
    DictionaryText rest = {data.data(), data.size()};
    DictionaryField field = {};
    for (unsigned i = 0; i < number; ++i) {
        if (!dictionaryNextField(&rest, &field)) return std::nullopt;
        if (i > 0 && field.beginsRecord) return std::nullopt;
    }
    return std::string_view(field.text.bytes, field.text.size);
}

}  // namespace Dictionary

#endif
