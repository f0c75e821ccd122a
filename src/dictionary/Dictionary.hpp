/// @file
/// The dictionary for hosts in C++17: owners instead of handles, exceptions instead of codes,
/// ranges and views instead of lists. Everything is inline and calls Dictionary.h. That header says
/// what each call does, what it takes and which threads may make it.
///
///     const auto words = dictionary::Image::open("words.bin");
///     for (const dictionary::Match& match : words.find(text)) { ... match.data ... }
///
/// Views of data texts last as long as the image. Errors are thrown as dictionary::Error, which has
/// the error record, or as std::bad_alloc. What the caller's callback throws passes through.

#ifndef DICTIONARY_DICTIONARY_HPP
#define DICTIONARY_DICTIONARY_HPP

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <list>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "Dictionary.h"

/// The interface for C++17.
namespace dictionary {

// ---- Errors ----

/// What is wrong, and where. The message is that of dictionaryErrorMessage.
class Error : public std::runtime_error {
public:
    /// Copies the record and the path in it.
    explicit Error(const DictionaryError& record)
        : std::runtime_error(messageOf(record)), m_record(record) {
        if (record.path == nullptr) return;
        m_path = std::make_shared<const std::string>(record.path);
        m_record.path = m_path->c_str();
    }

    /// The record, which lasts as long as this object. The path in it lasts as long as any copy.
    const DictionaryError& record() const noexcept { return m_record; }
    int code() const noexcept { return m_record.code; }  ///< one of DictionaryCode
    /// Whether what was asked for was done anyway.
    bool isWarning() const noexcept { return m_record.severity == DICTIONARY_WARNING; }

private:
    static std::string messageOf(const DictionaryError& record) {
        std::string message(dictionaryErrorMessage(&record, nullptr, 0), '\0');
        dictionaryErrorMessage(&record, message.data(), message.size() + 1);
        return message;
    }

    DictionaryError m_record;
    std::shared_ptr<const std::string> m_path;
};

namespace detail {

inline void require(int code, const DictionaryError& error) {
    if (code == DICTIONARY_OK) return;
    if (code == DICTIONARY_NO_MEMORY) throw std::bad_alloc();
    throw Error(error);
}

inline DictionaryText textOf(std::string_view text) {
    return {text.data() == nullptr ? "" : text.data(), text.size()};
}

inline std::string_view viewOf(DictionaryText text) {
    return {text.bytes, text.size};
}

/// Texts as Dictionary.h takes them. Views those that are added, but keeps those that are made on
/// demand.
class Texts {
public:
    Texts() = default;
    Texts(const Texts&) = delete;

    template <class Text>
    void add(Text&& text) {
        constexpr bool kIsView = std::is_lvalue_reference_v<Text> ||
                                 std::is_pointer_v<std::decay_t<Text>> ||
                                 std::is_same_v<std::decay_t<Text>, std::string_view>;
        if constexpr (kIsView) {
            m_texts.push_back(textOf(std::string_view(text)));
        } else {
            m_texts.push_back(textOf(m_kept.emplace_back(std::string_view(text))));
        }
    }
    template <class Range>
    void addEach(const Range& range) {
        for (auto&& text : range) add(std::forward<decltype(text)>(text));
    }
    void clear() {
        m_texts.clear();
        m_kept.clear();
    }

    const DictionaryText* data() const { return m_texts.data(); }
    std::size_t size() const { return m_texts.size(); }

private:
    std::vector<DictionaryText> m_texts;
    std::list<std::string> m_kept;  // their bytes stay where they are
};

/// Keeps what a callback throws until the library has returned.
class Thrown {
public:
    /// What `call` returns; false when it throws.
    template <class Call>
    bool guard(const Call& call) noexcept {
        try {
            return call();
        } catch (...) {
            m_exception = std::current_exception();
            return false;
        }
    }

    void rethrow() const {
        if (m_exception != nullptr) std::rethrow_exception(m_exception);
    }

private:
    std::exception_ptr m_exception;
};

}  // namespace detail

// ---- Data of keys ----

/// A field of a data text.
struct Field {
    std::string_view text;  ///< part of the data text
    bool beginsRecord;      ///< the first of a record; a repeated key has several records
};

/// The fields of a data text.
inline std::vector<Field> fieldsOf(std::string_view data) {
    std::vector<Field> fields;
    DictionaryText rest = detail::textOf(data);
    DictionaryField field = {};
    while (dictionaryNextField(&rest, &field)) {
        fields.push_back({detail::viewOf(field.text), field.beginsRecord});
    }
    return fields;
}

/// The same fields, by record: one record for each time that the key was in the source.
inline std::vector<std::vector<std::string_view>> recordsOf(std::string_view data) {
    std::vector<std::vector<std::string_view>> records;
    for (const Field& field : fieldsOf(data)) {
        if (field.beginsRecord) records.emplace_back();
        records.back().push_back(field.text);
    }
    return records;
}

// ---- Finding ----

/// As DictionaryOpenMode.
enum class OpenMode {
    map = DICTIONARY_OPEN_MAP,
    copy = DICTIONARY_OPEN_COPY,
    share = DICTIONARY_OPEN_SHARE,
    borrow = DICTIONARY_OPEN_BORROW
};

/// As DictionaryFindMode.
enum class FindMode {
    all = DICTIONARY_FIND_ALL,
    longest = DICTIONARY_FIND_LONGEST,
    segment = DICTIONARY_FIND_SEGMENT,
    weighted = DICTIONARY_FIND_WEIGHTED,
    prefixes = DICTIONARY_FIND_PREFIXES,
    classic = DICTIONARY_FIND_CLASSIC
};

/// As DictionaryUnit.
enum class Unit {
    byte = DICTIONARY_UNIT_BYTE,
    codePoint = DICTIONARY_UNIT_CODE_POINT,
    utf16 = DICTIONARY_UNIT_UTF16
};

class Segmenter;

/// How a text is searched; see DictionaryFindOptions.
struct FindOptions {
    FindMode mode = FindMode::all;         ///< which keys are found
    Unit unit = Unit::byte;                ///< what offsets count
    const Segmenter* segmenter = nullptr;  ///< only for FindMode::weighted, which needs one
    bool wholeWords = false;               ///< no match begins or ends inside a word
    bool everyImage = false;               ///< in a set, find a key in each image that has it
    bool unknownPieces = false;            ///< also find the pieces that are not keys
    bool joinedRuns = false;               ///< a run of ASCII letters and digits is one such piece

    FindOptions() = default;
    /// Only a mode and a unit, so that these can be passed in place of options.
    FindOptions(FindMode findMode, Unit findUnit = Unit::byte) : mode(findMode), unit(findUnit) {}
};

/// A key found in a text.
struct Match {
    std::size_t start;         ///< in the unit
    std::size_t length;        ///< in the unit
    std::string_view data;     ///< the key's data text
    std::uint32_t dataNumber;  ///< the data text's number in its image
    std::uint32_t image;       ///< number of the image in a set, else 0
    bool isKey;                ///< false for a piece that is not a key

    /// Takes over what a function of Dictionary.h found.
    explicit Match(const DictionaryMatch& match)
        : start(match.start),
          length(match.length),
          data(detail::viewOf(match.data)),
          dataNumber(match.dataNumber),
          image(match.image),
          isKey(match.data.bytes != nullptr) {}
};

/// The matches of many texts as arrays of equal length; see DictionaryColumns. Can be moved,
/// but not copied.
class Columns {
public:
    Columns() = default;
    /// Takes the matches of `other`, which is empty afterwards.
    Columns(Columns&& other) noexcept : m_columns(std::exchange(other.m_columns, {})) {}
    /// Swaps the matches of both.
    Columns& operator=(Columns&& other) noexcept {
        std::swap(m_columns, other.m_columns);
        return *this;
    }
    ~Columns() { dictionaryFreeColumns(&m_columns); }

    /// How many matches there are.
    std::size_t size() const { return m_columns.count; }
    /// Numbers of the texts, from 0.
    const std::uint32_t* text() const { return m_columns.text; }
    /// Where the matches begin, in the unit.
    const std::uint32_t* start() const { return m_columns.start; }
    /// Where they end, in the unit, exclusive.
    const std::uint32_t* end() const { return m_columns.end; }
    /// Numbers of the data texts; UINT32_MAX for a piece that is not a key.
    const std::uint32_t* dataNumber() const { return m_columns.dataNumber; }
    /// Numbers of the images in a set, else 0.
    const std::uint32_t* image() const { return m_columns.image; }

    /// For the functions of Dictionary.h.
    DictionaryColumns* get() noexcept { return &m_columns; }

private:
    DictionaryColumns m_columns = {};
};

/// What takes the place of a key; see DictionaryReplaceOptions.
struct ReplaceOptions {
    unsigned field = 1;        ///< number of the data field, from 1
    std::string alternatives;  ///< what separates alternatives; empty if the field is one text
    bool removeEmpty = false;  ///< an empty or missing field removes the key
};

// ---- Keys ----

/// A key with its data.
struct Key {
    std::string_view text;  ///< lasts until the range moves on
    std::string_view data;  ///< lasts as long as the image
    std::uint32_t image;    ///< number of the image in a set, else 0
};

/// The keys that begin with a prefix, in order. They can be iterated over once, while the image is
/// open.
class Keys {
public:
    class iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = Key;
        using difference_type = std::ptrdiff_t;
        using pointer = const Key*;
        using reference = const Key&;

        iterator() = default;
        explicit iterator(Keys& keys) : m_keys(&keys) { ++*this; }

        reference operator*() const { return m_keys->m_key; }
        pointer operator->() const { return &m_keys->m_key; }
        iterator& operator++() {
            if (!m_keys->next()) m_keys = nullptr;
            return *this;
        }
        void operator++(int) { ++*this; }
        friend bool operator==(const iterator& one, const iterator& other) {
            return one.m_keys == other.m_keys;
        }
        friend bool operator!=(const iterator& one, const iterator& other) {
            return !(one == other);
        }

    private:
        Keys* m_keys = nullptr;
    };

    /// The keys of an open handle.
    Keys(const DictionaryHandle* handle, std::string_view prefix) {
        DictionaryError error;
        m_cursor.reset(dictionaryOpenCursor(handle, &error));
        if (m_cursor == nullptr) detail::require(error.code, error);
        dictionarySeekPrefix(m_cursor.get(), detail::textOf(prefix));
    }

    /// May be called once.
    iterator begin() { return iterator(*this); }
    /// After the last key.
    iterator end() { return {}; }

private:
    struct Close {
        void operator()(DictionaryCursor* cursor) const { dictionaryCloseCursor(cursor); }
    };

    bool next() {
        DictionaryKey key;
        const bool isKey = dictionaryNextKey(m_cursor.get(), &key);
        if (isKey) m_key = {detail::viewOf(key.text), detail::viewOf(key.data), key.image};
        return isKey;
    }

    std::unique_ptr<DictionaryCursor, Close> m_cursor;
    Key m_key = {};
};

// ---- Images ----

/// An open dictionary, which can be moved but not copied. Any number of threads may use it at once,
/// but nothing else may use it while it is moved or destroyed. After it was moved from, it may only
/// be destroyed or assigned to.
class Image {
public:
    /// Verifies and opens an image file.
    static Image open(const std::string& path, OpenMode mode = OpenMode::map) {
        return make([&](DictionaryError* error) {
            return dictionaryOpenFile(path.c_str(), static_cast<int>(mode), error);
        });
    }

    /// Verifies and opens an image in memory, with OpenMode::copy or OpenMode::borrow.
    static Image openBytes(std::string_view bytes, OpenMode mode = OpenMode::copy) {
        return make([&](DictionaryError* error) {
            return dictionaryOpenBytes(detail::textOf(bytes), static_cast<int>(mode), error);
        });
    }

    /// A set that is searched as one. The images must stay open, but may be moved.
    static Image set(const std::vector<const Image*>& images) {
        std::vector<const DictionaryHandle*> handles;
        handles.reserve(images.size());
        for (const Image* image : images) handles.push_back(image->handle());
        return make([&](DictionaryError* error) {
            return dictionaryOpenSet(handles.data(), handles.size(), error);
        });
    }

    /// For the functions of Dictionary.h. The image still owns it.
    DictionaryHandle* handle() const noexcept { return m_handle.get(); }

    /// What the image holds.
    DictionaryDescription describe() const {
        DictionaryDescription description = {};
        description.size = sizeof description;
        DictionaryError error;
        detail::require(dictionaryDescribe(handle(), &description, &error), error);
        return description;
    }

    /// The number of keys.
    std::uint64_t size() const { return describe().keys; }

    /// The bytes of one image.
    std::string_view bytes(std::uint32_t image = 0) const {
        return detail::viewOf(dictionaryImageBytes(handle(), image));
    }

    /// The data text of `key`; std::nullopt if it is not a key.
    std::optional<std::string_view> lookup(std::string_view key) const {
        DictionaryText data;
        if (!dictionaryLookupKey(handle(), detail::textOf(key), &data)) return std::nullopt;
        return detail::viewOf(data);
    }

    /// Whether `key` as a whole is a key.
    bool contains(std::string_view key) const {
        return dictionaryLookupKey(handle(), detail::textOf(key), nullptr);
    }

    /// The data texts of many keys, in their order, in less time than one by one. `keys` is a range
    /// of elements that convert to std::string_view.
    template <class Range>
    std::vector<std::optional<std::string_view>> lookupEach(const Range& keys) const {
        detail::Texts texts;
        texts.addEach(keys);
        std::vector<DictionaryText> data(texts.size());
        dictionaryLookupKeys(handle(), texts.data(), texts.size(), data.data());
        std::vector<std::optional<std::string_view>> found(texts.size());
        for (std::size_t i = 0; i < found.size(); ++i) {
            if (data[i].bytes != nullptr) found[i] = detail::viewOf(data[i]);
        }
        return found;
    }

    /// The keys that begin with `prefix`, in order.
    Keys keys(std::string_view prefix = {}) const { return {handle(), prefix}; }

    /// The matches of `text`, in the order of their starts.
    std::vector<Match> find(std::string_view text, const FindOptions& options = {}) const {
        List list;
        const DictionaryFindOptions given = optionsOf(options);
        DictionaryError error;
        detail::require(
            dictionaryFindMatches(handle(), &given, detail::textOf(text), &list, &error), error);
        return {list.items, list.items + list.count};
    }

    /// The same for a range of texts.
    template <class Range>
    std::vector<std::vector<Match>> findEach(const Range& texts,
                                             const FindOptions& options = {}) const {
        detail::Texts given;
        given.addEach(texts);
        List list;
        std::vector<std::size_t> ends(given.size());
        const DictionaryFindOptions how = optionsOf(options);
        DictionaryError error;
        detail::require(dictionaryFindInTexts(handle(), &how, given.data(), given.size(), &list,
                                              ends.data(), &error),
                        error);
        std::vector<std::vector<Match>> found;
        found.reserve(ends.size());
        std::size_t begin = 0;
        for (const std::size_t end : ends) {
            found.emplace_back(list.items + begin, list.items + end);
            begin = end;
        }
        return found;
    }

    /// The same as columns.
    template <class Range>
    Columns findColumns(const Range& texts, const FindOptions& options = {}) const {
        detail::Texts given;
        given.addEach(texts);
        const DictionaryFindOptions how = optionsOf(options);
        Columns found;
        DictionaryError error;
        detail::require(
            dictionaryFindColumns(handle(), &how, given.data(), given.size(), found.get(), &error),
            error);
        return found;
    }

    /// The data text with that number; empty if there is none.
    std::string_view dataAt(std::uint32_t dataNumber, std::uint32_t image = 0) const {
        return detail::viewOf(dictionaryDataAt(handle(), image, dataNumber));
    }

    /// Calls `visit(match)` for each match of `text`, in the order of their starts, until it
    /// returns false. Returns false if it did. A `visit` that returns void sees all matches.
    template <class Visit>
    bool visit(std::string_view text, const FindOptions& options, Visit&& visit) const {
        using Visitor = std::remove_reference_t<Visit>;
        struct Context {
            Visitor& visit;
            detail::Thrown thrown;
        } context = {visit, {}};
        const auto call = [](void* given, const DictionaryMatch* match) {
            Context& self = *static_cast<Context*>(given);
            return self.thrown.guard([&] { return goesOn(self.visit, Match(*match)); });
        };
        const DictionaryFindOptions how = optionsOf(options);
        DictionaryError error;
        const int code =
            dictionaryVisitMatches(handle(), &how, detail::textOf(text), call, &context, &error);
        context.thrown.rethrow();
        if (code == DICTIONARY_STOPPED) return false;
        detail::require(code, error);
        return true;
    }

    /// Whether any key is in `text`.
    bool containsKey(std::string_view text, bool wholeWords = false) const {
        FindOptions options;
        options.wholeWords = wholeWords;
        const DictionaryFindOptions given = optionsOf(options);
        bool contains = false;
        DictionaryError error;
        detail::require(
            dictionaryContainsKey(handle(), &given, detail::textOf(text), &contains, &error),
            error);
        return contains;
    }

    /// `text` with every key of a segmentation replaced by a data field.
    std::string replace(std::string_view text, const ReplaceOptions& options = {},
                        const FindOptions& findOptions = FindMode::segment) const {
        DictionaryReplaceOptions given = {};
        given.size = sizeof given;
        given.field = options.field;
        given.alternatives = options.alternatives.empty() ? nullptr : options.alternatives.c_str();
        given.removeEmpty = options.removeEmpty;
        const DictionaryFindOptions how = optionsOf(findOptions);
        Replacement result;
        DictionaryError error;
        detail::require(
            dictionaryReplaceKeys(handle(), &how, &given, detail::textOf(text), &result, &error),
            error);
        return {result.bytes == nullptr ? "" : result.bytes, result.size};
    }

private:
    struct Close {
        void operator()(DictionaryHandle* handle) const { dictionaryClose(handle); }
    };
    struct List : DictionaryMatches {
        List() : DictionaryMatches() {}
        List(const List&) = delete;
        ~List() { dictionaryFreeMatches(this); }
    };
    struct Replacement : DictionaryReplacement {
        Replacement() : DictionaryReplacement() {}
        Replacement(const Replacement&) = delete;
        ~Replacement() { dictionaryFreeReplacement(this); }
    };

    explicit Image(DictionaryHandle* handle) : m_handle(handle) {}

    template <class Open>
    static Image make(const Open& open) {
        DictionaryError error;
        Image image(open(&error));
        if (image.handle() == nullptr) detail::require(error.code, error);
        return image;
    }

    template <class Visit>
    static bool goesOn(Visit& visit, const Match& match) {
        if constexpr (std::is_void_v<std::invoke_result_t<Visit&, const Match&>>) {
            visit(match);
            return true;
        } else {
            return static_cast<bool>(visit(match));
        }
    }

    static DictionaryFindOptions optionsOf(const FindOptions& options);

    std::unique_ptr<DictionaryHandle, Close> m_handle;
};

/// Throws Error unless the file is an image and no lookup reads outside it.
inline void verifyImage(const std::string& path) {
    DictionaryError error;
    detail::require(dictionaryVerifyImage(path.c_str(), &error), error);
}

/// The same for an image in memory.
inline void verifyBytes(std::string_view bytes) {
    DictionaryError error;
    detail::require(dictionaryVerifyBytes(detail::textOf(bytes), &error), error);
}

// ---- Segmentation by weight ----

/// As DictionaryWeights.
enum class Weights { counts = DICTIONARY_WEIGHTS_COUNTS, costs = DICTIONARY_WEIGHTS_COSTS };

/// Weights for FindMode::weighted. The image must stay open, but may be moved.
class Segmenter {
public:
    /// Reads the weight of every key from data field number `field`, counted from 1. `unknownCost`
    /// is what an unknown character costs; it is used only with Weights::costs.
    explicit Segmenter(const Image& image, Weights weights = Weights::counts, unsigned field = 1,
                       double unknownCost = 0) {
        DictionarySegmenterOptions options = {};
        options.size = sizeof options;
        options.weights = static_cast<int>(weights);
        options.field = field;
        options.unknownCost = unknownCost;
        DictionaryError error;
        m_segmenter.reset(dictionaryMakeSegmenter(image.handle(), &options, &error));
        if (m_segmenter == nullptr) detail::require(error.code, error);
    }

    /// For the functions of Dictionary.h. This object still owns it.
    const DictionarySegmenter* segmenter() const noexcept { return m_segmenter.get(); }

private:
    struct Free {
        void operator()(DictionarySegmenter* segmenter) const {
            dictionaryFreeSegmenter(segmenter);
        }
    };

    std::unique_ptr<DictionarySegmenter, Free> m_segmenter;
};

inline DictionaryFindOptions Image::optionsOf(const FindOptions& options) {
    DictionaryFindOptions given = {};
    given.size = sizeof given;
    given.mode = static_cast<int>(options.mode);
    given.unit = static_cast<int>(options.unit);
    given.segmenter = options.segmenter == nullptr ? nullptr : options.segmenter->segmenter();
    given.wholeWords = options.wholeWords;
    given.everyImage = options.everyImage;
    given.unknownPieces = options.unknownPieces;
    given.joinedRuns = options.joinedRuns;
    return given;
}

// ---- Building ----

/// As DictionaryBuildStage.
enum class Stage {
    read = DICTIONARY_STAGE_READ,
    place = DICTIONARY_STAGE_PLACE,
    write = DICTIONARY_STAGE_WRITE
};

/// How a source is read; see DictionaryBuildOptions.
struct BuildOptions {
    std::string fieldSeparator = "\t";   ///< in the notation of getEscapeSeparator
    std::string recordSeparator = "\n";  ///< in the same notation
    unsigned problemLimit = 0;           ///< how many problems to report at most; 0 means 100
    bool lenient = false;                ///< some errors are only warnings
    bool fromWindows = false;            ///< carriage returns and a byte-order mark are not data
    bool allowEmpty = false;             ///< a source without records makes an empty image
    bool folded = false;                 ///< letters are folded; see docs/words.md
    /// Returns false to stop the build. May be empty.
    std::function<bool(Stage stage, std::uint64_t done, std::uint64_t total)> onProgress;
};

/// What a build did: what it counted, and its problems in the order of the source.
struct Built {
    DictionaryBuildReport report;  ///< what it counted
    std::vector<Error> problems;   ///< as many as the options allow

    /// Whether any problem is more than a warning.
    bool hasErrors() const {
        for (const Error& problem : problems) {
            if (!problem.isWarning()) return true;
        }
        return false;
    }
};

/// Thrown when a build made no image. It is the build's first error.
class BuildError : public Error {
public:
    /// `first` is the first error, `built` everything that the build did.
    BuildError(const DictionaryError& first, Built built)
        : Error(first), m_built(std::make_shared<const Built>(std::move(built))) {}

    /// Problems of every severity, in the order of the source. There are none if the build was
    /// called wrongly, or was stopped before it found any.
    const std::vector<Error>& problems() const noexcept { return m_built->problems; }
    /// What the build counted before it ended.
    const DictionaryBuildReport& report() const noexcept { return m_built->report; }

private:
    std::shared_ptr<const Built> m_built;
};

/// An image in memory.
class ImageBuffer {
public:
    ImageBuffer() = default;
    /// Takes the image of `other`, which is empty afterwards.
    ImageBuffer(ImageBuffer&& other) noexcept : m_buffer(std::exchange(other.m_buffer, {})) {}
    /// Swaps the images of both.
    ImageBuffer& operator=(ImageBuffer&& other) noexcept {
        std::swap(m_buffer, other.m_buffer);
        return *this;
    }
    ~ImageBuffer() { dictionaryFreeBuffer(&m_buffer); }

    /// The whole image; lasts as long as this buffer holds it.
    std::string_view view() const noexcept { return {m_buffer.bytes, m_buffer.size}; }
    /// For the functions of Dictionary.h.
    DictionaryImageBuffer* get() noexcept { return &m_buffer; }

private:
    DictionaryImageBuffer m_buffer = {};
};

namespace detail {

/// A range of items, handed out one by one. An item is a pair of a key and its data. The data is
/// one field or a range of fields. Key and fields convert to std::string_view.
template <class Range>
class Items {
public:
    explicit Items(const Range& range) : m_next(std::begin(range)), m_end(std::end(range)) {}

    static bool next(void* self, const DictionaryText** fields, std::size_t* count) {
        Items& items = *static_cast<Items*>(self);
        bool isItem = false;
        const bool isTaken = items.m_thrown.guard([&] {
            isItem = items.take(*fields, *count);
            return true;
        });
        if (!isTaken) throw std::bad_alloc();  // stops the build; the library catches it
        return isItem;
    }

    void rethrow() const { m_thrown.rethrow(); }

private:
    using Iterator = decltype(std::begin(std::declval<const Range&>()));
    using End = decltype(std::end(std::declval<const Range&>()));
    using Item = decltype(*std::declval<Iterator&>());
    /// An item that the iterator returns by value is kept until the next one is asked for.
    using Kept =
        std::conditional_t<std::is_lvalue_reference_v<Item>, std::remove_reference_t<Item>*,
                           std::optional<std::decay_t<Item>>>;

    bool take(const DictionaryText*& fields, std::size_t& count) {
        if (m_begun) ++m_next;
        m_begun = true;
        if (!(m_next != m_end)) return false;
        if constexpr (std::is_pointer_v<Kept>) {
            m_item = &*m_next;
        } else {
            m_item.emplace(*m_next);
        }
        const auto& [key, data] = *m_item;
        m_fields.clear();
        m_fields.add(key);
        addData(data);
        fields = m_fields.data();
        count = m_fields.size();
        return true;
    }

    template <class Data>
    void addData(const Data& data) {
        if constexpr (std::is_convertible_v<const Data&, std::string_view>) {
            m_fields.add(data);
        } else {
            m_fields.addEach(data);
        }
    }

    Iterator m_next;
    End m_end;
    bool m_begun = false;
    Kept m_item = {};
    Texts m_fields;
    Thrown m_thrown;
};

/// One build with its callbacks.
class Build {
public:
    explicit Build(const BuildOptions& options) : m_options(options) {
        m_given.size = sizeof m_given;
        m_given.fieldSeparator = options.fieldSeparator.c_str();
        m_given.recordSeparator = options.recordSeparator.c_str();
        m_given.problemLimit = options.problemLimit;
        m_given.lenient = options.lenient;
        m_given.fromWindows = options.fromWindows;
        m_given.allowEmpty = options.allowEmpty;
        m_given.folded = options.folded;
        m_given.onProblem = collect;
        m_given.onProgress = options.onProgress ? goOn : nullptr;
        m_given.context = this;
        m_built.report.size = sizeof m_built.report;
    }
    Build(const Build&) = delete;

    /// Returns the code of the first error. Rethrows what a callback threw.
    int run(const DictionarySource& source, const DictionaryTarget& target) {
        const int code = dictionaryBuildFrom(&source, &target, &m_given, &m_built.report, &m_error);
        m_thrown.rethrow();
        return code;
    }

    Built finish(int code) {
        if (code == DICTIONARY_NO_MEMORY) throw std::bad_alloc();
        if (code != DICTIONARY_OK) throw BuildError(m_error, std::move(m_built));
        return std::move(m_built);
    }

    /// The same if the source is only checked: errors in it are not thrown.
    Built finishCheck(int code) {
        return finish(code != DICTIONARY_NO_MEMORY && m_built.hasErrors() ? DICTIONARY_OK : code);
    }

private:
    static void collect(void* self, const DictionaryError* problem) {
        Build& build = *static_cast<Build*>(self);
        const bool collected = build.m_thrown.guard([&] {
            build.m_built.problems.emplace_back(*problem);
            return true;
        });
        if (!collected) throw std::bad_alloc();  // stops the build; the library catches it
    }

    static bool goOn(void* self, int stage, std::uint64_t done, std::uint64_t total) {
        Build& build = *static_cast<Build*>(self);
        return build.m_thrown.guard(
            [&] { return build.m_options.onProgress(static_cast<Stage>(stage), done, total); });
    }

    const BuildOptions& m_options;
    DictionaryBuildOptions m_given = {};
    DictionaryError m_error = {};
    Built m_built = {};
    Thrown m_thrown;
};

inline DictionarySource fileSource(const std::string& path) {
    DictionarySource source = {};
    source.size = sizeof source;
    source.path = path.c_str();
    return source;
}

inline DictionarySource bytesSource(std::string_view bytes) {
    DictionarySource source = {};
    source.size = sizeof source;
    source.bytes = textOf(bytes);
    return source;
}

template <class Range>
DictionarySource itemsSource(Items<Range>& items) {
    DictionarySource source = {};
    source.size = sizeof source;
    source.nextItem = Items<Range>::next;
    source.context = &items;
    return source;
}

inline DictionaryTarget fileTarget(const std::string& path) {
    return {sizeof(DictionaryTarget), path.c_str(), nullptr};
}

inline DictionaryTarget bufferTarget(ImageBuffer& buffer) {
    return {sizeof(DictionaryTarget), nullptr, buffer.get()};
}

inline DictionaryTarget noTarget() {
    return {sizeof(DictionaryTarget), nullptr, nullptr};
}

inline Built build(const DictionarySource& source, const DictionaryTarget& target,
                   const BuildOptions& options) {
    Build build(options);
    return build.finish(build.run(source, target));
}

template <class Range>
Built buildItems(const Range& range, const DictionaryTarget& target, const BuildOptions& options) {
    Items<Range> items(range);
    Build build(options);
    const int code = build.run(itemsSource(items), target);
    items.rethrow();
    return build.finish(code);
}

inline Built check(const DictionarySource& source, const BuildOptions& options) {
    Build build(options);
    return build.finishCheck(build.run(source, noTarget()));
}

template <class Range>
Built checkItems(const Range& range, const BuildOptions& options) {
    Items<Range> items(range);
    Build build(options);
    const int code = build.run(itemsSource(items), noTarget());
    items.rethrow();
    return build.finishCheck(code);
}

}  // namespace detail

/// Builds the image file `image` from the source file `source`. Throws BuildError if no image was
/// made.
inline Built buildFile(const std::string& source, const std::string& image,
                       const BuildOptions& options = {}) {
    return detail::build(detail::fileSource(source), detail::fileTarget(image), options);
}

/// The same from a source in memory.
inline Built buildBytes(std::string_view source, const std::string& image,
                        const BuildOptions& options = {}) {
    return detail::build(detail::bytesSource(source), detail::fileTarget(image), options);
}

/// The same from a range of items. An item is a key and its data, in a pair or another type that a
/// structured binding takes apart in two. The data is one field or a range of fields.
template <class Range>
Built buildItems(const Range& items, const std::string& image, const BuildOptions& options = {}) {
    return detail::buildItems(items, detail::fileTarget(image), options);
}

/// Builds an image in memory from a source file. It replaces what `image` held.
inline Built buildFile(const std::string& source, ImageBuffer& image,
                       const BuildOptions& options = {}) {
    image = ImageBuffer();
    return detail::build(detail::fileSource(source), detail::bufferTarget(image), options);
}

/// The same from a source in memory.
inline Built buildBytes(std::string_view source, ImageBuffer& image,
                        const BuildOptions& options = {}) {
    image = ImageBuffer();
    return detail::build(detail::bytesSource(source), detail::bufferTarget(image), options);
}

/// The same from a range of items.
template <class Range>
Built buildItems(const Range& items, ImageBuffer& image, const BuildOptions& options = {}) {
    image = ImageBuffer();
    return detail::buildItems(items, detail::bufferTarget(image), options);
}

/// Only checks a source file. Returns its problems, including errors.
inline Built checkFile(const std::string& source, const BuildOptions& options = {}) {
    return detail::check(detail::fileSource(source), options);
}

/// The same for a source in memory.
inline Built checkBytes(std::string_view source, const BuildOptions& options = {}) {
    return detail::check(detail::bytesSource(source), options);
}

/// The same for a range of items.
template <class Range>
Built checkItems(const Range& items, const BuildOptions& options = {}) {
    return detail::checkItems(items, options);
}

}  // namespace dictionary

#endif
