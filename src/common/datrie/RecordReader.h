/// @file
/// CRecordReader reads a text source record by record through fixed buffers and cuts records into
/// fields in place.

#ifndef DICTIONARY_RECORD_READER_H
#define DICTIONARY_RECORD_READER_H

#include <string>
#include <vector>

#include "DictionaryExport.h"

namespace Dictionary {

/// Call init once, then next until it returns null. Call splitRecord on a record to get its fields.
/// The source is read in fills of up to 4,194,299 bytes. Meant for regular files: after a short
/// read from a pipe, bytes of the previous fill may be taken for new ones. A NUL byte ends the fill
/// that holds it. One thread at a time.
class DICTIONARY_EXPORT CRecordReader {
public:
    CRecordReader();
    /// Frees the buffers; the source's descriptor stays open, see cleanUp.
    ~CRecordReader();

    CRecordReader(const CRecordReader&) = delete;
    CRecordReader& operator=(const CRecordReader&) = delete;

    /// Opens `szFileName` and sets the separators, which are given in the notation of
    /// getEscapeSeparator and must not be empty. Returns 0. When the file cannot be opened, says
    /// so on standard output and ends the process with status 1.
    int init(std::string szFileName, std::string recordSeparator, std::string fieldSeparator);

    /// The next record, NUL-terminated and without its separator, or null at the source's end or
    /// at a read error. A last record without a separator is dropped. The text is valid until the
    /// next call.
    ///
    /// A record of up to 4,194,298 bytes is returned whole, wherever it is in the source. A longer
    /// one is cut off after 4,194,303 bytes, without a message, if the part of it before its last
    /// fill has at most 4,194,298 bytes. Otherwise the part of a fill that does not fit is dropped,
    /// after a message on standard output.
    char* next();

    /// Cuts `record` in place at every field separator. `fields` is overwritten with the starts of
    /// the fields, empty ones included, which point into `record`. Returns how many there are.
    int splitRecord(char* record, std::vector<char*>& fields);

    /// Looks for a separator that begins at the end of `tail` and ends in `head`. If there is one,
    /// returns true and sets `tailPart` and `headPart` to the number of its bytes in each. Both are
    /// counted as if the piece of `tail` that is searched were separatorLength bytes long, even
    /// when `tail` is shorter.
    bool findSplitPosition(const char* tail, unsigned long tailLength, const char* head,
                           const char* separator, unsigned long separatorLength,
                           unsigned long& tailPart, unsigned long& headPart);

    /// Closes the descriptor if it is 0; any other descriptor is left open.
    void cleanUp();

private:
    friend struct RecordsByFill;

    DICTIONARY_LOCAL bool takeFromFill();
    DICTIONARY_LOCAL bool goToNextFill();
    DICTIONARY_LOCAL int carriedLength() const;
    DICTIONARY_LOCAL bool finishAcrossFills(int carried);
    DICTIONARY_LOCAL void finishInFill(int end, int carried);
    DICTIONARY_LOCAL void carryRemainder(int carried);
    DICTIONARY_LOCAL bool refill();

    char* m_readBuffer;    ///< what the last read delivered
    char* m_carryBuffer;   ///< a record begun in earlier fills and not yet finished
    char* m_recordBuffer;  ///< the record that next returned
    int m_readLength;      ///< bytes that the last read delivered
    int m_recordEnd;       ///< index in m_readBuffer just past the record separator last found
    int m_nextStart;       ///< index in m_readBuffer at which the next record begins
    int m_fd;
    std::string m_recordSeparator;
    std::string m_fieldSeparator;
    int m_recordSeparatorLength;  ///< up to the first NUL
};

}  // namespace Dictionary

#endif
