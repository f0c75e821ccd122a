/// @file
/// CDATReader looks keys up in a dictionary image in memory: whole keys, every key in a text, and
/// the segmentation of a text by longest keys.

#ifndef DICTIONARY_DAT_READER_H
#define DICTIONARY_DAT_READER_H

#include <string>
#include <utility>
#include <vector>

#include "DictionaryExport.h"
#include "FeatureData.h"
#include "UTF8Coder.h"

namespace Dictionary {

/// Owns neither the image nor the coder, both of which must outlive it; making one only reads the
/// image's header. Lookups read nothing but their arguments and the image, so any number may run
/// concurrently, also on one reader. Of the image they read cells inside its cell array, at most
/// the one 32-bit word after it, and the feature records that cells name.
///
/// Texts are NUL-terminated. A text whose end the coder cannot encode is searched up to there. A
/// null text, coder or image finds nothing; the grouped `allMatch` then still appends its lists,
/// but it needs a text. Offsets and lengths are in bytes of the caller's text.
class DICTIONARY_EXPORT CDATReader {
public:
    /// `image` is trusted: it must be one that CDATWriter::write() produced. With `reverse`, texts
    /// are walked from their last character to their first, for images of reversed keys.
    CDATReader(ICoderInterface* coder, void* image, bool reverse);
    ~CDATReader();

    /// A copy reads the same image by the same coder.
    CDATReader(const CDATReader& other)
        : m_coder(other.m_coder), m_image(nullptr), m_reverse(false), m_cellBytes(0) {
        *this = other;
    }
    /// Reads the same image by the same coder as `other` from now on.
    CDATReader& operator=(const CDATReader& other) {
        if (this == &other) return *this;
        m_coder = other.m_coder;
        m_image = other.m_image;
        m_reverse = other.m_reverse;
        m_cellBytes = other.m_cellBytes;
        const int size = other.m_features.size();
        m_features.reset(false, other.m_features.data(), size, size);
        return *this;
    }

    /// Sets `featureText` to the feature text of `key` if the dictionary holds it as a whole, else
    /// to the empty string, which is also the answer for a key with an empty feature text. In
    /// reverse mode only keys of one one-byte character are found.
    void exactMatch(const char* key, std::string& featureText);

    /// Appends a record for every key found in the first `length` bytes of `text` (all of them
    /// when `length` is 0, negative or not below strlen(text)), by start, then by length, both
    /// ascending. With `fromFirstOnly`, only keys that begin at the first character that can begin
    /// one. A key right before a character outside the alphabet is not reported. In reverse mode
    /// all of `matches`, with what it held before, is turned round at the end, so that records
    /// are ordered by end, ascending, the longest first.
    void allMatch(const char* text, std::vector<SPOS>& matches, bool fromFirstOnly, int length);

    /// Appends one list for every byte position of `text` (of its first `length` bytes as above;
    /// only the first position with `fromFirstOnly`): the keys that start there, shortest first,
    /// each as its length and its feature text. `text` must not be null. In reverse mode keys that
    /// come out of start order are dropped.
    void allMatch(const char* text, std::vector<std::vector<std::pair<int, std::string> > >& groups,
                  bool fromFirstOnly, int length);

    /// Appends the words of a greedy segmentation of `text` by the longest key at each position;
    /// characters that begin no key are passed over. In reverse mode the segmentation runs
    /// backwards from the text's end, and `matches` is turned round as above.
    void maxMatch(const char* text, std::vector<SPOS>& matches);

    /// Debugging aid without output: decodes the codes from index `from` to before index `to` and
    /// drops the text.
    void printVec(std::vector<int>& codes, int from, int to);

private:
    ICoderInterface* m_coder;
    void* m_image;
    bool m_reverse;
    int m_cellBytes;  ///< the cell array's size in bytes
    CFeatureDataContainer m_features;
};

}  // namespace Dictionary

#endif
