// Compares the record reader, to which a file comes in small pieces, with a splitter of the whole
// file. Separators have one to four bytes.

#include <unistd.h>

#include <cstring>

#include "Fuzz.h"
#include "RecordReader.h"

namespace {

// What the file holds, and where each piece of it ends.
std::string content;
std::vector<std::size_t> pieceEnds;

std::size_t position = 0;
std::size_t piece = 0;
std::size_t longest = 0;  // bytes of the buffer that were ever written

// A separator of any bytes in the notation that the reader takes.
std::string notationOf(const std::string& separator) {
    std::string notation;
    for (const char byte : separator) {
        const std::string digits = std::to_string(static_cast<unsigned char>(byte));
        notation += '\\' + std::string(3 - digits.size(), '0') + digits;
    }
    return notation;
}

std::string separatorFrom(Input& input) {
    std::string separator = input.text(1 + input.below(4));
    std::replace(separator.begin(), separator.end(), '\0', ' ');
    return separator.empty() ? "\n" : separator;
}

// The reader counts a carried text that is shorter than the separator as if it were as long. So no
// piece ends with such a short unfinished record.
std::size_t nextEnd(std::size_t wanted, const std::vector<std::string>& records,
                    std::size_t separatorSize) {
    std::size_t start = 0;
    for (const std::string& record : records) {
        const std::size_t next = start + record.size() + separatorSize;
        if (next > wanted) break;
        start = next;
    }
    const bool tooShort = wanted > start && wanted - start < separatorSize;
    return std::min(tooShort ? start + separatorSize : wanted, content.size());
}

void cutIntoPieces(std::size_t most, std::size_t step, const std::vector<std::string>& records,
                   std::size_t separatorSize) {
    pieceEnds.clear();
    for (std::size_t end = 0, i = 1; end < content.size(); ++i) {
        end = nextEnd(end + 1 + i * step % most, records, separatorSize);
        pieceEnds.push_back(end);
    }
}

}  // namespace

// Replaces `read` in the library. After a piece, nothing of the previous one is left, as with a
// file that fits one buffer.
extern "C" ssize_t __wrap_read(int, char* buffer, std::size_t);
ssize_t __wrap_read(int, char* buffer, std::size_t) {
    if (piece == pieceEnds.size()) return 0;
    const std::size_t size = pieceEnds[piece++] - position;
    std::memcpy(buffer, &content[position], size);
    if (longest > size) std::memset(buffer + size, '\0', longest - size);
    longest = std::max(longest, size);
    position += size;
    return static_cast<ssize_t>(size);
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    muteOutput();
    Input input(data, size);
    const std::string recordSeparator = separatorFrom(input);
    const std::string fieldSeparator = separatorFrom(input);
    const std::size_t longestPiece = 1 + input.below(20);
    const std::size_t step = input.byte();
    content = input.text(2000);
    content.erase(std::remove(content.begin(), content.end(), '\0'), content.end());
    std::vector<std::string> expected = split(content, recordSeparator);
    cutIntoPieces(longestPiece, step, expected, recordSeparator.size());
    expected.pop_back();  // it has no separator after it
    position = piece = longest = 0;

    Dictionary::CRecordReader reader;
    const int next = dup(STDERR_FILENO);
    close(next);
    reader.init("/dev/null", notationOf(recordSeparator), notationOf(fieldSeparator));
    close(next);  // the reader leaves it open
    std::vector<char*> fields;
    for (const std::string& record : expected) {
        char* const read = reader.next();
        require(read != nullptr && read == record, "records are those of the whole file");
        require(reader.splitRecord(read, fields) == static_cast<int>(fields.size()),
                "fields are counted");
        require(
            std::vector<std::string>(fields.begin(), fields.end()) == split(record, fieldSeparator),
            "fields are those of the record");
    }
    require(reader.next() == nullptr, "bytes without a separator after them are no record");
    return 0;
}
