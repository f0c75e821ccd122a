#include "Words.h"

#include <iterator>
#include <map>
#include <mutex>
#include <tuple>

#include "Error.h"

namespace dictionary_sqlite {

namespace {

using Handle = std::unique_ptr<DictionaryHandle, decltype(&dictionaryClose)>;

// A shared image is in memory once, so the address of its bytes names it while it is open.
using Key = std::tuple<const char*, int, int, unsigned, double>;

Key keyOf(const DictionaryHandle* handle, const WordsOptions& options) {
    const DictionarySegmenterOptions& weights = options.weights;
    return {dictionaryImageBytes(handle, 0).bytes, options.mode, weights.weights, weights.field,
            weights.unknownCost};
}

using OpenWords = std::map<Key, std::weak_ptr<const Words>>;

void forgetClosed(OpenWords& open) {
    for (auto entry = open.begin(); entry != open.end();) {
        entry = entry->second.expired() ? open.erase(entry) : std::next(entry);
    }
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
    throw Error("mode " + std::string(name) + " is not one of all, longest, segment, weighted");
}

Words::Words(DictionaryHandle* handle, const WordsOptions& options)
    : m_handle(handle), m_mode(options.mode) {}

Words::~Words() {
    dictionaryFreeSegmenter(m_segmenter);
    dictionaryClose(m_handle);
}

std::shared_ptr<const Words> Words::open(const WordsOptions& options) {
    static std::mutex mutex;
    static OpenWords open;
    const std::lock_guard<std::mutex> lock(mutex);
    Handle handle = openImage(options.path);
    const Key key = keyOf(handle.get(), options);
    forgetClosed(open);
    const auto known = open.find(key);
    if (known != open.end()) {
        if (std::shared_ptr<const Words> words = known->second.lock()) return words;
    }
    const std::shared_ptr<Words> words(new Words(handle.release(), options));
    if (options.mode == DICTIONARY_FIND_WEIGHTED) {
        DictionaryError error;
        words->m_segmenter = dictionaryMakeSegmenter(words->m_handle, &options.weights, &error);
        if (words->m_segmenter == nullptr) throw Error(messageOf(error));
    }
    open[key] = words;
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
