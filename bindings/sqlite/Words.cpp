#include "Words.h"

#include <map>
#include <mutex>
#include <tuple>

#include "Error.h"

namespace dictionary_sqlite {

namespace {

using Handle = std::unique_ptr<DictionaryHandle, decltype(&dictionaryClose)>;

// One handle is open for one image, so it can name the image.
using Key = std::tuple<const DictionaryHandle*, int, int, unsigned, double>;

Key keyOf(const DictionaryHandle* handle, const WordsOptions& options) {
    const DictionarySegmenterOptions& weights = options.weights;
    return {handle, options.mode, weights.weights, weights.field, weights.unknownCost};
}

struct ModeName {
    std::string_view name;
    int mode;
};

constexpr ModeName kModes[] = {{"all", DICTIONARY_FIND_ALL},
                               {"longest", DICTIONARY_FIND_LONGEST},
                               {"segment", DICTIONARY_FIND_SEGMENT},
                               {"weighted", DICTIONARY_FIND_WEIGHTED}};

Handle openImage(const std::string& path) {
    DictionaryError error;
    Handle handle(dictionaryOpenFile(path.c_str(), DICTIONARY_OPEN_SHARE, &error), dictionaryClose);
    if (handle == nullptr) throw Error(messageOf(error));
    return handle;
}

}  // namespace

int modeOf(std::string_view name) {
    for (const ModeName& mode : kModes) {
        if (mode.name == name) return mode.mode;
    }
    throw Error("mode " + std::string(name) + " is none of all, longest, segment, weighted");
}

Words::Words(DictionaryHandle* handle, const WordsOptions& options)
    : m_handle(handle), m_mode(options.mode) {}

Words::~Words() {
    dictionaryFreeSegmenter(m_segmenter);
    dictionaryClose(m_handle);
}

std::shared_ptr<const Words> Words::open(const WordsOptions& options) {
    static std::mutex mutex;
    static std::map<Key, std::weak_ptr<const Words>> open;
    const std::lock_guard<std::mutex> lock(mutex);
    Handle handle = openImage(options.path);
    std::weak_ptr<const Words>& entry = open[keyOf(handle.get(), options)];
    if (std::shared_ptr<const Words> words = entry.lock()) return words;
    const std::shared_ptr<Words> words(new Words(handle.release(), options));
    if (options.mode == DICTIONARY_FIND_WEIGHTED) {
        DictionaryError error;
        words->m_segmenter = dictionaryMakeSegmenter(words->m_handle, &options.weights, &error);
        if (words->m_segmenter == nullptr) throw Error(messageOf(error));
    }
    entry = words;
    return words;
}

void Words::find(std::string_view text, int mode, Matches& matches) const {
    DictionaryFindOptions options = {};
    options.size = sizeof options;
    options.mode = mode;
    options.wholeWords = true;
    if (mode == DICTIONARY_FIND_WEIGHTED) options.segmenter = m_segmenter;
    DictionaryError error;
    check(dictionaryFindMatches(m_handle, &options, {text.data(), text.size()}, &matches.list(),
                                &error),
          error);
}

}  // namespace dictionary_sqlite
