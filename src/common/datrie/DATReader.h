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

/// Owns neither the image nor the coder, both of which must outlive it. Making a reader only reads
/// the image's header. Lookups only read their arguments and the image, so any number may run
/// concurrently, even on one reader. In the image they read the cell array, at most one 32-bit word
/// after it, and the feature records that cells name.
///
/// Texts are NUL-terminated. A text is searched as far as the coder can encode it. With a null
/// text, coder or image, nothing is found; the grouped `allMatch` still appends its lists then, but
/// it needs a text. Offsets and lengths are in bytes of the caller's text.
class DICTIONARY_EXPORT CDATReader {
public:
    /// `image` is trusted: it must be one that CDATWriter::write() produced. With `reverse`, texts
    /// are walked from their last character to their first, for images of reversed keys.
    CDATReader(ICoderInterface* coder, void* image, bool reverse);
    ~CDATReader();

    /// A copy reads the same image with the same coder.
    CDATReader(const CDATReader& other)
        : m_coder(other.m_coder), m_image(nullptr), m_reverse(false), m_cellBytes(0) {
        *this = other;
    }
    /// Makes this reader read the image of `other`, with its coder.
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

    /// Sets `featureText` to the feature text of `key`, or to the empty string if `key` is not in
    /// the dictionary. A key with an empty feature text yields the empty string, too. In reverse
    /// mode only keys of one one-byte character are found.
    void exactMatch(const char* key, std::string& featureText);

    /// Appends a record for every key found in the first `length` bytes of `text` (all of them when
    /// `length` is 0, negative or not below strlen(text)), by start, then by length, both
    /// ascending. With `fromFirstOnly`, only keys that begin at the first character that can begin
    /// one. A key right before a character outside the alphabet is not reported. In reverse mode
    /// all of `matches`, including what it held before, is reversed at the end, so that records are
    /// ordered by end, ascending, the longest first.
    void allMatch(const char* text, std::vector<SPOS>& matches, bool fromFirstOnly, int length);

    /// Appends one list for every byte position of `text` (of its first `length` bytes as above;
    /// only the first position with `fromFirstOnly`): the keys that start there, shortest first,
    /// each as its length and its feature text. `text` must not be null. In reverse mode, the first
    /// key that starts before the one found before it is dropped, and all keys after it.
    void allMatch(const char* text, std::vector<std::vector<std::pair<int, std::string> > >& groups,
                  bool fromFirstOnly, int length);

    /// Appends the words of a greedy segmentation of `text` by the longest key at each position;
    /// characters that begin no key are skipped. In reverse mode the segmentation runs backwards
    /// from the text's end, and `matches` is reversed as above.
    void maxMatch(const char* text, std::vector<SPOS>& matches);

    /// Debugging aid without output: decodes the codes at indexes `from` to `to` - 1 and drops the
    /// text.
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
