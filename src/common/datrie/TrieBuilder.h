// Helper, not installed: builds an image, from keys and feature strings to cells and feature area.
// It writes to no stream.

#ifndef DICTIONARY_TRIE_BUILDER_H
#define DICTIONARY_TRIE_BUILDER_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "CellArray.h"
#include "CellPieces.h"
#include "FeatureData.h"
#include "KeyPool.h"
#include "KeyTrie.h"
#include "StringTable.h"
#include "UTF8Coder.h"

namespace Dictionary {

// Listens to the placement. An exception that it throws ends the placement.
class PlacementListener {
public:
    virtual ~PlacementListener() = default;
    // Called before a node is placed, at least once per kPauseStep passing keys, so that a long
    // build can be interrupted.
    virtual void pause(std::uint64_t running, std::uint64_t total) = 0;
    // Called before a node is placed, if the count of passing keys over all nodes so far, including
    // this one, is a multiple of kReportStep.
    virtual void report(std::uint64_t running, std::uint64_t total) = 0;

    static constexpr std::uint64_t kPauseStep = 64;
    static constexpr std::uint64_t kReportStep = 100;
};

enum class Placement { kNothingToPlace, kPlaced, kNoRoom };

class TrieBuilder {
public:
    explicit TrieBuilder(std::int32_t alphabetSize) : m_cells(alphabetSize) {}

    const KeyPool& keys() const { return m_keys; }
    CellArray& cells() { return m_cells; }
    const CellArray& cells() const { return m_cells; }
    const CFeatureDataContainer& featureArea() const { return m_featureArea; }

    void reserve(std::size_t keys, std::size_t codes);
    // The caller promises to add nothing once a build has begun. Memory that the build no longer
    // needs is then released early.
    void expectOneBuild() { m_isOnlyBuild = true; }
    // Encodes and adds a key; false when the coder refuses it.
    bool addKey(ICoderInterface& coder, const char* key, bool reverse, std::string_view feature);
    // `key` may be one that is yet to be added; the string is kept for it.
    void attachFeature(std::string_view feature, int key);

    // The stages of a build, in order. The first drops what an earlier build made; without it,
    // storeFeatures appends.
    void clear();
    void storeRecord(std::string_view text);  // any bytes; no key refers to them
    void storeFeatures();
    void makeTrie();
    // False when it is certain, before anything is placed, that `place` would find no room.
    bool mayFit() const;
    Placement place(PlacementListener& listener);

    // Counts one more cell. Calls `announce(size)` with the image's size in bytes, then
    // `sink(bytes, size)` for the pieces of the image, in order. Returns the image's size.
    template <class Announce, class Sink>
    std::int32_t writeImage(Announce announce, Sink sink);

    // The count of passing keys over all nodes placed so far, including the one being placed.
    std::uint64_t runningCount() const { return m_running; }

    // The same count over all nodes.
    std::uint64_t totalPassing() const { return m_total; }

private:
    static constexpr std::uint32_t kNoString = static_cast<std::uint32_t>(-1);

    void keepGreater(std::uint32_t& kept, std::uint32_t string) const;
    std::int64_t cellLimit() const;
    bool placeAll(PlacementListener& listener);
    bool placeRoot();
    bool placeAllShared(PlacementListener& listener);
    bool placeAllTails(PlacementListener& listener);
    bool placeShared(const TrieNode& node);
    bool placeTailNode(std::uint32_t key, Step step);
    void markEnd(std::int64_t index, const TrieChild& child);
    void markEnd(std::int64_t index, std::uint32_t firstKey, std::uint32_t lastKey);
    void count(std::uint64_t passing, PlacementListener& listener);

    KeyPool m_keys;
    StringTable m_strings;                                  // every distinct feature string
    std::vector<std::uint32_t> m_keyStrings = {kNoString};  // by key number; the first is none
    std::map<std::size_t, std::uint32_t> m_earlyStrings;    // of keys that are yet to be added
    std::vector<std::int32_t> m_recordOffsets;              // by feature string
    bool m_isOnlyBuild = false;
    bool m_featuresFit = true;
    CFeatureDataContainer m_featureArea;
    std::unique_ptr<KeyTrie> m_trie;
    CellArray m_cells;
    std::uint64_t m_running = 0;
    std::uint64_t m_nextPause = 0;
    std::uint64_t m_total = 0;

    // By key number: the cell of the next node to be placed among those whose first passing key
    // this is. One entry per key is enough: such nodes are ancestors of each other, and a child
    // gets its cell only when its parent is placed.
    std::vector<std::int32_t> m_cellOfKey;
    std::vector<int> m_codes;           // of the key being added
    std::vector<SPOS> m_positions;      // of the key being added
    std::vector<TrieChild> m_children;  // of the node being placed
    std::vector<std::int32_t> m_labels;
};

template <class Announce, class Sink>
std::int32_t TrieBuilder::writeImage(Announce announce, Sink sink) {
    const std::int64_t count = m_cells.countOneMore();
    const std::int64_t cellBytes = count * kCellBytes;
    const auto size = static_cast<std::int32_t>(cellBytes + m_featureArea.size());
    announce(size);
    CellPieces<Sink> pieces(static_cast<std::size_t>(cellBytes), sink);
    pieces.add(headerCell(m_featureArea.size(), imageCell(m_cells.cellAt(0)).check,
                          static_cast<std::int32_t>(cellBytes)));
    for (std::int64_t index = 1; index < count; ++index) {
        pieces.add(imageCell(m_cells.cellAt(index)));
    }
    pieces.finish();
    if (m_featureArea.size() > 0) {
        sink(m_featureArea.data(), static_cast<std::size_t>(m_featureArea.size()));
    }
    return size;
}

}  // namespace Dictionary

#endif
