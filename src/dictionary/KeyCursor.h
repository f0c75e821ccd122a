// Helper, not installed: goes through the keys of an image that begin with a prefix.

#ifndef DICTIONARY_KEY_CURSOR_H
#define DICTIONARY_KEY_CURSOR_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "ImageFormat.h"
#include "KeyIndex.h"

namespace Dictionary {

// Allocates memory when it is made, and never again. The image and its index must outlive it.
class KeyCursor {
public:
    // Begins before the first of all keys.
    KeyCursor(const ImageView& image, const KeyIndex& index);

    // Moves before the first key that begins with `prefix`. No key begins with illegal UTF-8.
    void seek(std::string_view prefix);

    // Moves to the next key with the prefix. Returns false if there is none.
    bool next();

    // The key at which the cursor is, valid until it moves, and its data, valid as long as the
    // image.
    std::string_view text() const { return {m_text.get(), m_size}; }
    std::string_view data() const { return m_image->featureText(m_feature); }

private:
    // How many keys ahead data is prefetched in a long list. Each list begins with fewer, as it may
    // be short.
    static constexpr int kFar = 32;

    void start(const char* entry, std::size_t prefixBytes);
    void lookAhead();

    const ImageView* m_image;
    const KeyIndex* m_index;
    std::unique_ptr<char[]> m_text;
    std::size_t m_size = 0;
    std::size_t m_prefixBytes = 0;
    std::size_t m_leastShared = 0;  // the next key has the prefix if it shares at least this
    std::int32_t m_feature = kNoFeature;
    int m_stepsToFar = 0;
    const char* m_entry = nullptr;
    const char* m_ahead = nullptr;  // the first entry whose data was not prefetched
};

}  // namespace Dictionary

#endif
