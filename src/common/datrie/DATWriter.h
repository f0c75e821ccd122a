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

/// One node of the trie, a distinct prefix of at least one key, as the single-node operations of
/// CDATWriter take it. Keys are named by their numbers, which count from 1.
struct SInnerDATWUnit {
    std::vector<int> prefix;    ///< the codes up to and including this node's
    int keyIndex;               ///< the smallest number among the keys with this prefix
    int depth;                  ///< prefix length minus 1
    std::set<int> passingKeys;  ///< the keys that go on beyond this node
    std::set<int> endingKeys;   ///< the keys that end here; the node is terminal if there are any
    int featureOffset;          ///< byte offset of the record of the last key added that ends here
};

/// Orders nodes by prefix, code by code, a prefix before what it begins.
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
/// added after a build, and a further `buildDAT` then places all of them anew.
///
/// One thread at a time. Nothing is thrown but the allocator's exception.
class DICTIONARY_EXPORT CDATWriter {
public:
    /// The coder is not owned and must outlive the writer. With `reverse`, keys are stored with
    /// their codes in reverse order, for readers made with the same flag. A writer with a null
    /// coder refuses every key.
    CDATWriter(ICoderInterface* coder, bool reverse);
    ~CDATWriter();

    CDATWriter(const CDATWriter&) = delete;
    CDATWriter& operator=(const CDATWriter&) = delete;

    /// Adds one key (NUL-terminated text) with its feature string. It gets the next number.
    /// Returns false, adding nothing, when the key is null, when there is no coder or when the
    /// coder refuses the key. Nothing is deduplicated: of equal keys the last one added decides
    /// the feature. A key that encodes to no codes takes a number but is never found.
    bool addKeys(const char* key, std::string feature);

    /// Records that the key with number `keyIndex` carries `feature`. Of several strings for one
    /// key, the one given to addKeys among them, the bytewise greatest counts, compared whole. For
    /// a number that no key has yet it counts once the key is added. The string takes its place in
    /// the feature area even if no key ever carries it.
    void putFeature(std::string feature, int keyIndex);

    /// Builds trie and double array over all keys added so far, with a progress line on standard
    /// output. Returns false when no key has a code (nothing is printed), and, after "wrong !!!!!"
    /// on standard output, when cells or image would pass 2^31 - 1 bytes or a code lies outside
    /// what the array can place.
    bool buildDAT();

    // The steps of buildDAT, in the order in which it takes them.

    /// Drops cells, trie and feature area; keys, features, capacity, free hint and highest index
    /// stay. `final` makes no difference: memory for cells is taken when they are used.
    void clear(bool final);
    /// Appends each distinct feature string once, in bytewise order and cut at its first NUL, to
    /// the feature area, and notes the offset of each key's record. Called again without a `clear`,
    /// it appends all of them once more. Returns 0.
    int writeFeature();
    /// Makes the trie's nodes from the keys.
    void buildPrefix();
    /// Places the children of one node, whose ancestors are placed already, and marks the node's
    /// own cell. Returns false when there is no room for them below 2^31 - 1.
    bool buildDATWUnit(SInnerDATWUnit* unit);
    /// The smallest base at which every child of the node finds a free cell, putting the child of
    /// the smallest key number on the first free cell that allows it. Moves the free hint to the
    /// first free cell. Negative when the code of that child is greater than the hint, so that the
    /// base would be below 0, and when there is no room below 2^31 - 1 bytes.
    int getConsistentBasePos(SInnerDATWUnit* unit);
    /// Moves `position` forward to the first free cell at or after it, growing the array if need
    /// be.
    void nextFreePos(int& position);
    /// Grows the array by doublings to at least `size` cells.
    void reallocBC(int size);

    /// The image: N cells of 12 bytes, the first of them the header, then the feature area. The
    /// caller releases it with delete[]. N is one more than at the call before: each call to
    /// either `write` makes the image one cell longer.
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
