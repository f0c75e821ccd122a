#include "FeatureData.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

namespace {

constexpr int kLengthBytes = sizeof(std::int32_t);
constexpr int kFirstCapacity = 8;

char* advance(void** cursor, int bytes) {
    char* here = static_cast<char*>(*cursor);
    *cursor = here + bytes;
    return here;
}

// The first doubling of `capacity` that holds `size` bytes. Offsets are 32 bits wide, so an area
// cannot exceed 2^31 - 1 bytes.
int grownCapacity(int capacity, std::int64_t size) {
    constexpr std::int64_t kMaxBytes = std::numeric_limits<int>::max();
    if (size > kMaxBytes) throw std::bad_alloc();
    std::int64_t grown = capacity == 0 ? kFirstCapacity : capacity;
    while (grown < size) grown *= 2;
    return static_cast<int>(std::min(grown, kMaxBytes));
}

}  // namespace

void CFeatureData::serialize(void** cursor) {
    if (length == 0) return;
    std::memcpy(advance(cursor, kLengthBytes), &length, kLengthBytes);
    std::memcpy(*cursor, text.data(), static_cast<std::size_t>(length));
    // Kept: the cursor moves by the text's own size, whatever `length` says.
    advance(cursor, static_cast<int>(text.size()));
}

void CFeatureData::deserialize(void** cursor) {
    std::memcpy(&length, *cursor, kLengthBytes);
    // Kept: a length of 0 leaves text and cursor as they were.
    if (length == 0) return;
    const char* bytes = advance(cursor, kLengthBytes + length) + kLengthBytes;
    text.assign(bytes, strnlen(bytes, static_cast<std::size_t>(length)));
}

CFeatureDataContainer::~CFeatureDataContainer() {
    reset(true, nullptr, kFirstCapacity, 0);
}

int CFeatureDataContainer::write(CFeatureData& record) {
    const std::int64_t needed = static_cast<std::int64_t>(record.text.size()) + kLengthBytes;
    const int capacity = grownCapacity(m_capacity, m_size + needed);
    if (m_buffer == nullptr || capacity > m_capacity) {
        auto grown = std::make_unique<char[]>(static_cast<std::size_t>(capacity));
        std::copy_n(m_buffer, m_buffer == nullptr ? 0 : m_size, grown.get());
        // Kept: the old buffer is deleted even if it was not owned.
        delete[] m_buffer;
        m_buffer = grown.release();
        m_capacity = capacity;
    }
    const int offset = m_size;
    void* cursor = m_buffer + offset;
    record.serialize(&cursor);
    // Kept: an empty text takes its four bytes, though nothing is written.
    m_size += static_cast<int>(needed);
    return offset;
}

void CFeatureDataContainer::read(CFeatureData& record, int offset) {
    if (offset < 0) return;
    record.length = 0;
    record.text.clear();
    if (m_buffer == nullptr) return;
    void* cursor = m_buffer + offset;
    record.deserialize(&cursor);
}

void CFeatureDataContainer::reset(bool owner, const char* buffer, int capacity, int size) {
    if (m_owner) delete[] m_buffer;
    m_buffer = const_cast<char*>(buffer);
    m_capacity = capacity;
    m_size = size;
    m_owner = owner;
}
