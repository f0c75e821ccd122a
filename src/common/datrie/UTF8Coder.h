/// @file
/// The interface between text and trie: a coder turns text into codes, the labels of the trie.

#ifndef DICTIONARY_UTF8_CODER_H
#define DICTIONARY_UTF8_CODER_H

#include <vector>

#include "DictionaryExport.h"

namespace Dictionary {

/// Where an encoded character, or a match, is in its text. Offsets are in bytes from the text's
/// first byte.
struct SPOS {
    int start;    ///< offset of its first byte
    int end;      ///< offset of its last byte, so it is inclusive
    int feature;  ///< 0 from a coder; in matches, the byte offset of the key's feature record
};

/// Turns text into codes and back. Implementations must be safe to call from several threads at
/// once if dictionaries that use them are searched by several threads. The destructor is not
/// virtual: only a coder that has nothing to destroy may be deleted through this interface.
class ICoderInterface {
public:
    /// Appends a code to `codes` and a record to `positions` for every character of the first
    /// `length` bytes of `text`; of all its bytes when `length` is 0, negative or not below
    /// strlen(text). Clears neither vector. Returns non-zero on success. A builder refuses a text
    /// for which the result is 0; a reader ignores the result.
    virtual int encodeString(const char* text, std::vector<int>& codes,
                             std::vector<SPOS>& positions, int length) = 0;

    /// Writes the text of `code` to `buffer`, which has room for `bufferLength` bytes, without a
    /// terminating NUL. Returns the number of bytes written, 0 when they do not fit.
    virtual int decode(int code, char* buffer, int bufferLength) = 0;

    /// Whether `text` begins with a character that this coder knows.
    virtual bool isInMyCode(const char* text) = 0;

    /// The alphabet size: only codes from 0 up to, but without, this number may begin a key.
    virtual int getNumOfSingleWord() = 0;
};

/// UTF-8 to Unicode code points. Stateless: all operations may run concurrently on one object.
class DICTIONARY_EXPORT CUTF8Coder : public ICoderInterface {
public:
    /// As the interface says. The encoding ends silently at the first illegal or cut-off
    /// sequence; what came before it is kept. Returns 0 when a code above U+FFFF was appended,
    /// else 1.
    int encodeString(const char* text, std::vector<int>& codes, std::vector<SPOS>& positions,
                     int length) override;

    /// As the interface says. A surrogate is written in its own three bytes; a negative code and
    /// one above U+10FFFF are written as U+FFFD.
    int decode(int code, char* buffer, int bufferLength) override;

    /// True when `text` begins with a legal character and at least one more byte follows it: a
    /// text of exactly one character, and the empty text, yield false.
    bool isInMyCode(const char* text) override;

    /// 65536: the characters of the Basic Multilingual Plane.
    int getNumOfSingleWord() override;
};

}  // namespace Dictionary

#endif
