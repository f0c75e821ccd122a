#include "RecordReader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "StringUtil.h"

namespace Dictionary {

namespace {

constexpr int kBufferBytes = 4194304;
constexpr int kFillBytes = kBufferBytes - 5;      // the rest stays zero and ends every scan
constexpr int kMaxTextBytes = kBufferBytes - 1;   // a terminator follows
constexpr int kMaxCarryBytes = kBufferBytes - 6;  // the most that is carried over
constexpr int kNoFile = -1;

struct Release {
    void operator()(char* buffer) const { std::free(buffer); }
};
using Buffer = std::unique_ptr<char, Release>;

Buffer newBuffer() {
    Buffer buffer(static_cast<char*>(std::calloc(kBufferBytes, 1)));
    if (buffer == nullptr) throw std::bad_alloc();
    return buffer;
}

// Copies as much of a text as fits to a buffer, after its first `used` bytes, and terminates it.
void append(char* buffer, int used, const char* text, std::size_t length) {
    const auto room = static_cast<std::size_t>(std::max(0, kMaxTextBytes - used));
    const std::size_t copied = std::min(length, room);
    std::memcpy(buffer + used, text, copied);
    buffer[static_cast<std::size_t>(used) + copied] = '\0';
}

}  // namespace

CRecordReader::CRecordReader()
    : m_readBuffer(nullptr),
      m_carryBuffer(nullptr),
      m_recordBuffer(nullptr),
      m_readLength(0),
      m_recordEnd(0),
      m_nextStart(0),
      m_fd(kNoFile),
      m_recordSeparatorLength(0) {
    Buffer readBuffer = newBuffer();
    Buffer carryBuffer = newBuffer();
    m_recordBuffer = newBuffer().release();
    m_carryBuffer = carryBuffer.release();
    m_readBuffer = readBuffer.release();
}

CRecordReader::~CRecordReader() {
    cleanUp();
    std::free(m_readBuffer);
    std::free(m_carryBuffer);
    std::free(m_recordBuffer);
}

int CRecordReader::init(std::string szFileName, std::string recordSeparator,
                        std::string fieldSeparator) {
    m_fd = open(szFileName.c_str(), O_RDONLY);
    if (m_fd < 0) {
        std::printf("open file failed! The file is: %s\n", szFileName.c_str());
        std::exit(1);
    }
    m_recordSeparator = getEscapeSeparator(recordSeparator);
    m_recordSeparatorLength = static_cast<int>(std::strlen(m_recordSeparator.c_str()));
    m_fieldSeparator = getEscapeSeparator(fieldSeparator);
    return 0;
}

char* CRecordReader::next() {
    while (!takeFromFill()) {
        if (!goToNextFill()) return nullptr;
    }
    return m_recordBuffer;
}

// Moves the next record that ends in the fill to the record buffer; false when there is none.
bool CRecordReader::takeFromFill() {
    m_recordBuffer[0] = '\0';
    const int carried = carriedLength();
    if (carried > 0 && finishAcrossFills(carried)) return true;
    const char* end = std::strstr(m_readBuffer + m_nextStart, m_recordSeparator.c_str());
    if (end == nullptr) return false;
    finishInFill(static_cast<int>(end - m_readBuffer), carried);
    return true;
}

bool CRecordReader::goToNextFill() {
    carryRemainder(carriedLength());
    if (refill()) return true;
    m_carryBuffer[0] = '\0';
    return false;
}

int CRecordReader::carriedLength() const {
    return static_cast<int>(std::strlen(m_carryBuffer));
}

// The record ends with a separator that began in the carry and ends in the new fill.
bool CRecordReader::finishAcrossFills(int carried) {
    unsigned long tailPart = 0;
    unsigned long headPart = 0;
    const auto carryLength = static_cast<unsigned long>(carried);
    if (!findSplitPosition(m_carryBuffer, carryLength, m_readBuffer, m_recordSeparator.c_str(),
                           static_cast<unsigned long>(m_recordSeparatorLength), tailPart,
                           headPart)) {
        return false;
    }
    if (tailPart <= carryLength) m_carryBuffer[carryLength - tailPart] = '\0';
    append(m_recordBuffer, 0, m_carryBuffer, std::strlen(m_carryBuffer));
    m_carryBuffer[0] = '\0';
    m_nextStart = static_cast<int>(headPart);
    m_recordEnd = m_nextStart;
    return true;
}

// The record ends with the separator at index `end` of the fill.
void CRecordReader::finishInFill(int end, int carried) {
    append(m_recordBuffer, 0, m_carryBuffer, static_cast<std::size_t>(carried));
    m_carryBuffer[0] = '\0';
    m_readBuffer[end] = '\0';
    append(m_recordBuffer, carried, m_readBuffer + m_nextStart,
           static_cast<std::size_t>(end - m_nextStart));
    // Kept: a separator with a NUL byte is skipped in its full size, though only the bytes before
    // the NUL were looked for.
    const int separatorSize = static_cast<int>(m_recordSeparator.size());
    m_nextStart = std::min(end + separatorSize, kFillBytes);
    m_recordEnd = m_nextStart;
}

// The rest of the fill is an unfinished record.
void CRecordReader::carryRemainder(int carried) {
    if (carried - m_recordEnd + m_readLength > kMaxCarryBytes) {
        // Kept: no end of line and no flush; the rest of the fill is dropped, the carry is not.
        std::printf("One Record Is TOO LONG %s", m_carryBuffer);
        return;
    }
    const char* rest = m_readBuffer + m_recordEnd;
    append(m_carryBuffer, carried, rest, std::strlen(rest));
}

// Kept: after a short fill, the buffer still has bytes of the previous fill. In a regular file only
// the last fill is short.
bool CRecordReader::refill() {
    const ssize_t length = read(m_fd, m_readBuffer, kFillBytes);
    if (length <= 0) return false;
    m_readLength = static_cast<int>(length);
    m_recordEnd = 0;
    m_nextStart = 0;
    return true;
}

int CRecordReader::splitRecord(char* record, std::vector<char*>& fields) {
    const char* const end = record + std::strlen(record);
    fields.assign(1, record);
    for (;;) {
        char* separator = std::strstr(fields.back(), m_fieldSeparator.c_str());
        if (separator == nullptr) break;
        *separator = '\0';
        char* const field = separator + m_fieldSeparator.size();
        if (field > end) break;
        fields.push_back(field);
    }
    return static_cast<int>(fields.size());
}

bool CRecordReader::findSplitPosition(const char* tail, unsigned long tailLength, const char* head,
                                      const char* separator, unsigned long separatorLength,
                                      unsigned long& tailPart, unsigned long& headPart) {
    const char* piece = tail + tailLength - std::min(tailLength, separatorLength);
    std::string joint(piece, strnlen(piece, separatorLength));
    joint.append(head, strnlen(head, separatorLength));
    const std::size_t position = joint.find(separator);
    if (position == std::string::npos) return false;
    // Kept: both parts are counted as if the piece were as long as the separator.
    headPart = position;
    tailPart = separatorLength - position;
    return 0 < position && position < separatorLength;
}

// Kept: the test is inverted, so a source's descriptor stays open until the process ends.
void CRecordReader::cleanUp() {
    if (m_fd == 0) close(m_fd);
}

}  // namespace Dictionary
