/// @file
/// CDATWriter builds dictionary images: it collects keys with their feature strings, makes the trie
/// of their prefixes and places it into a double array by exact first fit.
///
/// The double array follows Aoe, "An Efficient Digital Search Algorithm by Using a Double-Array
/// Structure" (IEEE TSE 15, 1989), over whole codes instead of bytes and without a root cell.

#ifndef DICTIONARY_DAT_WRITER_H
#define DICTIONARY_DAT_WRITER_H

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "DictionaryExport.h"
#include "UTF8Coder.h"

namespace Dictionary {

class TrieBuilder;

/// One node of the trie, that is, one distinct prefix of the keys, in the form that the single-node
/// operations of CDATWriter take. Keys are identified by their numbers, which count from 1.
struct SInnerDATWUnit {
    std::vector<int> prefix;    ///< the codes up to and including this node's
    int keyIndex;               ///< the smallest number among the keys with this prefix
    int depth;                  ///< prefix length minus 1
    std::set<int> passingKeys;  ///< the keys that go on beyond this node
    std::set<int> endingKeys;   ///< the keys that end here; the node is terminal if there are any
    int featureOffset;          ///< byte offset of the record of the last key added that ends here
};

/// Orders nodes by prefix, code by code. A prefix comes before the longer ones that begin with it.
struct CUnitSort {
    /// Whether `left` comes first.
    bool operator()(const SInnerDATWUnit* left, const SInnerDATWUnit* right) const {
        return left->prefix < right->prefix;
    }
};

/// Orders nodes for placement: more passing keys first, then the shallower, then the smaller key
/// number. A parent always comes before its children.
struct CWriteSort {
    /// Whether `left` comes first.
    bool operator()(const SInnerDATWUnit* left, const SInnerDATWUnit* right) const {
        if (left->passingKeys.size() != right->passingKeys.size()) {
            return left->passingKeys.size() > right->passingKeys.size();
        }
        if (left->depth != right->depth) return left->depth < right->depth;
        return left->keyIndex < right->keyIndex;
    }
};

/// Collect keys with `addKeys`, build with `buildDAT`, take the image with `write`. Keys may be
/// added after a build; the next `buildDAT` then places all keys anew.
///
/// One thread at a time. The only exception that is thrown is the allocator's.
class DICTIONARY_EXPORT CDATWriter {
public:
    /// The coder is not owned and must outlive the writer. With `reverse`, keys are stored with
    /// their codes in reverse order, for readers made with the same flag. A writer with a null
    /// coder refuses every key.
    CDATWriter(ICoderInterface* coder, bool reverse);
    ~CDATWriter();

    CDATWriter(const CDATWriter&) = delete;
    CDATWriter& operator=(const CDATWriter&) = delete;

    /// Adds one key (NUL-terminated text) with its feature string. It gets the next number. Returns
    /// false, adding nothing, when the key is null, when there is no coder or when the coder
    /// refuses the key. Keys are not deduplicated: of equal keys, the last one added determines the
    /// feature. A key that encodes to no codes takes a number but is never found.
    bool addKeys(const char* key, std::string feature);

    /// Gives `feature` to the key with number `keyIndex`. Of several strings for one key, including
    /// the one given to addKeys, the bytewise greatest is used; they are compared whole. If no key
    /// has the number yet, the string takes effect when the key is added. It takes its place in the
    /// feature area even if no key ever uses it.
    void putFeature(std::string feature, int keyIndex);

    /// Builds trie and double array over all keys added so far, with a progress line on standard
    /// output. Returns false, without printing anything, when no key has a code. Returns false
    /// after "wrong !!!!!" on standard output when the cells or the image would exceed 2^31 - 1
    /// bytes, or when a code is outside the range that the array can place.
    bool buildDAT();

    // The steps of buildDAT, in the order in which it takes them.

    /// Drops the cells, the trie and the feature area. Keys, features, capacity, free hint and
    /// highest index stay. `final` makes no difference: memory for cells is allocated only when
    /// they are used.
    void clear(bool final);
    /// Appends each distinct feature string once, in bytewise order and cut at its first NUL, to
    /// the feature area, and notes the offset of each key's record. Called again without a `clear`,
    /// it appends all of them again. Returns 0.
    int writeFeature();
    /// Makes the trie's nodes from the keys.
    void buildPrefix();
    /// Places the children of one node and marks the node's own cell. Its ancestors must be placed
    /// already. Returns false when there is no room for the children below 2^31 - 1 bytes, or when
    /// the code of a node at depth 0 is out of range.
    bool buildDATWUnit(SInnerDATWUnit* unit);
    /// Returns the smallest base at which every child of the node has a free cell: the child of the
    /// smallest key number goes to the first free cell that allows it. Moves the free hint to the
    /// first free cell. Returns a negative number when the code of that child is greater than the
    /// hint, as the base would be below 0, and when there is no room below 2^31 - 1 bytes.
    int getConsistentBasePos(SInnerDATWUnit* unit);
    /// Moves `position` forward to the first free cell at or after it, growing the array if need
    /// be.
    void nextFreePos(int& position);
    /// Grows the array by doubling to at least `size` cells.
    void reallocBC(int size);

    /// The image: N cells of 12 bytes, the first of them the header, then the feature area. The
    /// caller releases it with delete[]. Each call of either `write` makes the image one cell
    /// longer, so N is one more than at the call before.
    char* write();
    /// The byte size of the image that the last `write()` returned; 0 before.
    int imageSize() const { return m_imageSize; }

    /// Writes the raw cells to `output`: base, check, and feature if `withFeatures`, 32 bits each.
    /// The check of a free cell is skipped, so those four bytes keep what they held. Returns the
    /// address just past the last byte.
    void* write(void* output, bool withFeatures);

    /// Appends (key text, feature text) for every terminal cell, in cell order, and returns how
    /// many it appended. Keys of a reversed writer come out reversed.
    int show(std::vector<std::pair<std::string, std::string> >& entries);

private:
    friend class CDictionayApp;

    ICoderInterface* m_coder;
    std::unique_ptr<TrieBuilder> m_builder;
    int m_imageSize;
    bool m_reverse;
};

}  // namespace Dictionary

#endif
