// An open dictionary, and how it cuts texts into words.

#ifndef DICTIONARY_SQLITE_WORDS_H
#define DICTIONARY_SQLITE_WORDS_H

#include <Dictionary.h>

#include <memory>
#include <string>
#include <string_view>

namespace dictionary_sqlite {

struct WordsOptions {
    std::string path;
    int mode = DICTIONARY_FIND_ALL;
    // Only for DICTIONARY_FIND_WEIGHTED.
    DictionarySegmenterOptions weights = {sizeof(DictionarySegmenterOptions),
                                          DICTIONARY_WEIGHTS_COUNTS, 1, 0};
};

// The DictionaryFindMode of that name: all, longest, segment or weighted. Throws an Error.
int modeOf(std::string_view name);

// A list of matches that is used again for each text.
class Matches {
public:
    Matches() = default;
    ~Matches() { dictionaryFreeMatches(&m_list); }
    Matches(const Matches&) = delete;
    Matches& operator=(const Matches&) = delete;

    DictionaryMatches& list() { return m_list; }
    size_t size() const { return m_list.count; }
    const DictionaryMatch& operator[](size_t index) const { return m_list.items[index]; }
    const DictionaryMatch* begin() const { return m_list.items; }
    const DictionaryMatch* end() const { return m_list.items + m_list.count; }

private:
    DictionaryMatches m_list = {nullptr, 0, 0};
};

// Any number of threads may use one object.
class Words {
public:
    // Opens an image. However many connections ask for an image, it is mapped once per process, and
    // its weights are read once. Throws an Error if the image or its weights are wrong.
    static std::shared_ptr<const Words> open(const WordsOptions& options);

    ~Words();
    Words(const Words&) = delete;
    Words& operator=(const Words&) = delete;

    const DictionaryHandle* handle() const { return m_handle; }
    int mode() const { return m_mode; }

    // Fills `matches` with what `mode` finds in `text`, in bytes. Words of scripts that are written
    // with blanks are found whole. Throws an Error.
    void find(std::string_view text, int mode, Matches& matches) const;

private:
    // Takes over the handle.
    Words(DictionaryHandle* handle, const WordsOptions& options);

    DictionaryHandle* m_handle;
    DictionarySegmenter* m_segmenter = nullptr;
    int m_mode;
};

}  // namespace dictionary_sqlite

#endif
