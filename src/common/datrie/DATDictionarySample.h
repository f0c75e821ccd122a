/// @file
/// CDictionayApp ties one coder, one writer and one loaded image together.

#ifndef DICTIONARY_DAT_DICTIONARY_SAMPLE_H
#define DICTIONARY_DAT_DICTIONARY_SAMPLE_H

#include <sys/mman.h>

#include <cstddef>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "DATWriter.h"
#include "DictionaryExport.h"
#include "UTF8Coder.h"

/// The classic interface: classes for building and searching, and string utilities.
namespace Dictionary {

/// An object is used once, in one of two ways: it is built (buildDic, then writeBinaryDic) and
/// destroyed, or it is loaded (loadBinaryDic), queried any number of times and destroyed.
///
/// Queries only read the object, so several threads may query one loaded object at once. Building,
/// loading and destroying must not overlap with any other use of the same object.
class DICTIONARY_EXPORT CDictionayApp {
public:
    /// A match result: one list for each byte position of a text, with the keys that start there.
    /// See allMatch.
    typedef std::vector<std::vector<std::pair<int, std::string> > > Matches;

    /// Makes an object that is neither built nor loaded yet.
    CDictionayApp() : m_coder(nullptr), m_writer(nullptr), m_image(nullptr), m_imageLength(0) {
        m_coder = new CUTF8Coder;
    }

    ~CDictionayApp() {
        delete m_writer;
        // The coder has no state, so releasing its storage is enough.
        ::operator delete(static_cast<void*>(m_coder));
        m_coder = nullptr;
        m_writer = nullptr;
        if (m_image != nullptr) munmap(m_image, static_cast<std::size_t>(m_imageLength));
    }

    CDictionayApp(const CDictionayApp&) = delete;
    CDictionayApp& operator=(const CDictionayApp&) = delete;

    /// Builds the trie from the text file `fileName`. Records end with `recordSeparator`. Their
    /// fields are separated by `fieldSeparator`, and the first one is the key. Both separators are
    /// in the notation of getEscapeSeparator. A key's data text is its further fields, each
    /// followed by a tab; the data of a repeated key is joined with ";". A key written as a
    /// backslash and an n is the newline character.
    ///
    /// Writes one line per record to standard error, before it waits for more of the source, and
    /// "Build OK" at the end. Writes the progress line to standard output. Returns 1 when the build
    /// is finished. At a record with fewer than two fields, returns 0 after the message
    /// "Wrong format of file : "; the record reader then stays allocated, with its descriptor and
    /// its buffers. Ends the process when the file cannot be opened or its name is null. A last
    /// record without its separator is lost. A key that the coder refuses is reported and left out.
    int buildDic(const char* fileName, const char* fieldSeparator, const char* recordSeparator);

    /// Writes the built image to `fileName` and its size to standard error. Returns 0, without a
    /// message, when the file cannot be opened or its name is null, otherwise 1: write errors go
    /// unnoticed. Call it only after buildDic.
    int writeBinaryDic(const char* fileName);

    /// Maps the image file `fileName` read-only and private. Returns 0, after a message on standard
    /// error, when the file cannot be opened or mapped, otherwise 1. Queries find nothing when it
    /// returned 0, or when the file is shorter than its header says. Nothing else is checked.
    int loadBinaryDic(const char* fileName);

    /// Appends to `result` one list for every byte position of `text`: the keys that start there,
    /// shortest first, each as its length in bytes and its feature text. Does nothing when `text`
    /// is null or no image is loaded.
    void allMatch(const char* text, Matches& result);

    /// The longest key at every position of a match result of `text`, in order, each followed by a
    /// tab: the key alone, or, with `withFeatures`, key, "/", byte position, ":", feature text. The
    /// caller releases the string with free(). Never null.
    char* returnListStr(const char* text, Matches& result, bool withFeatures);

    /// Writes a line for every match of a match result of `text` to standard error.
    void showAllMatch(const char* text, Matches& result);

    /// Sets `feature` to the feature text of `key`, or to the empty string, and writes both to
    /// standard error.
    void showExactMatch(const char* key, std::string& feature);

private:
    friend struct EntryPoints;

    /// The mapping that queries read; null when there is none.
    DICTIONARY_LOCAL void* image() const;
    DICTIONARY_LOCAL void dropImage();

    /// The string that returnListStr makes from the result of allMatch, but without building the
    /// lists.
    DICTIONARY_LOCAL char* searchText(const char* text, bool withFeatures) const;

    ICoderInterface* m_coder;  ///< owned, always a CUTF8Coder
    CDATWriter* m_writer;      ///< owned, null until buildDic
    void* m_image;             ///< the mapping; MAP_FAILED after a mapping that failed
    long m_imageLength;        ///< in bytes
};

}  // namespace Dictionary

#endif
