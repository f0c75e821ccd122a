#include "Items.h"

#include "Utf8String.h"

namespace Dictionary::Node {

Items::Items(const Value& items) {
    for (const Value& item : items.elements()) {
        for (const Value& field : item.elements()) {
            const Utf8String utf8(field.text());
            m_bytes.append(utf8.data(), utf8.size());
            m_fieldEnds.push_back(m_bytes.size());
        }
        m_itemEnds.push_back(m_fieldEnds.size());
    }
}

void Items::describe(DictionarySource& source) {
    source.nextItem = next;
    source.context = this;
}

bool Items::next(void* self, const DictionaryText** fields, std::size_t* count) {
    Items& items = *static_cast<Items*>(self);
    if (items.m_item == items.m_itemEnds.size()) return false;
    const auto startOf = [](const std::vector<std::size_t>& ends, std::size_t i) {
        return i == 0 ? 0 : ends[i - 1];
    };
    items.m_fields.clear();
    for (std::size_t i = startOf(items.m_itemEnds, items.m_item);
         i < items.m_itemEnds[items.m_item]; ++i) {
        const std::size_t start = startOf(items.m_fieldEnds, i);
        items.m_fields.push_back({items.m_bytes.data() + start, items.m_fieldEnds[i] - start});
    }
    ++items.m_item;
    *fields = items.m_fields.data();
    *count = items.m_fields.size();
    return true;
}

}  // namespace Dictionary::Node
