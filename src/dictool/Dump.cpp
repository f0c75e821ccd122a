// dump: the source of an image.

#include <algorithm>
#include <optional>

#include "Command.h"
#include "Folding.h"
#include "Format.h"
#include "ImageFormat.h"
#include "Output.h"
#include "Printable.h"
#include "Report.h"
#include "Trie.h"

namespace dictool {

namespace {

struct DumpOptions {
    std::string image;
};

constexpr char kDetails[] =
    R"(Writes a source that builds to the same bytes, its keys in ascending order. Some images have
no such source, and that is reported instead: if keys of their source were cut off or empty,
or if it had other separators and its keys or data contain a tab or a newline. If another
writer placed the cells differently, the source has the same keys and data but builds to other
bytes; the first of these is reported.
The source of a folded image needs 'dictool build --fold'. If lint reports errors, such as data
that ends in a carriage return, the source needs 'dictool build --lenient'.

Exit status: 0 when the source builds to the same bytes, 1 when it builds to others.)";

// The record that marks a folded image, and to which no key refers.
constexpr std::size_t kFoldedMarkBytes =
    Dictionary::kRecordLengthBytes + Dictionary::kFoldedMark.size();

constexpr std::string_view kWrittenNewline = "\\n";

struct Key {
    std::string text;  // as in the image
    std::string_view data;
    Dictionary::Cell cell;
    bool isLeaf;
};

// Calls `take` for every key, in the order of the bytes that it has in a source, where the newline
// is a backslash and an n.
template <class Take>
void forEachSourceKey(const Trie& trie, Take take) {
    std::optional<Key> newline;
    Cursor cursor(trie);
    while (cursor.nextKey()) {
        Key key = {std::string(cursor.key()), cursor.data(), cursor.cell(), cursor.isLeaf()};
        if (newline && key.text > kWrittenNewline) {
            take(*newline);
            newline.reset();
        }
        if (sourceTextOf(key.text) == key.text) {
            take(key);
        } else {
            newline = std::move(key);
        }
    }
    if (newline) take(*newline);
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t bytes = characterBytes(text);
        if (bytes == 0) return false;
        text.remove_prefix(bytes);
    }
    return true;
}

// Checks whether a build of an image's source can make that image again.
class Rebuild {
public:
    explicit Rebuild(const Trie& trie) : m_trie(trie), m_image(trie.image()) {}

    // Throws Failure if not.
    void check() {
        forEachSourceKey(m_trie, [this](const Key& key) { checkKey(key); });
        checkData();
    }

private:
    void checkKey(const Key& key) {
        ++m_number;
        const auto holds = [](std::string_view text, std::string_view bytes) {
            return text.find_first_of(bytes) != std::string_view::npos;
        };
        using namespace std::string_view_literals;
        const std::string_view text = sourceTextOf(key.text);
        const std::string which = "key number " + std::to_string(m_number);
        if (holds(text, "\t\n\0"sv)) refuse(which + " holds a separator or a NUL");
        if (key.text == kWrittenNewline) refuse(which + " would become a newline");
        if (!isUtf8(text)) refuse(which + " is no UTF-8");
        if (holds(key.data, "\n")) refuse("the data of " + which + " holds a newline");
        if (key.data.empty() || key.data.back() != '\t') {
            refuse("the data of " + which + " does not end with a tab");
        }
        // A leaf's base is minus its key's number in the source.
        if (key.isLeaf && key.cell.base != -m_number) {
            refuse(which + " was number " + std::to_string(-key.cell.base) +
                   " in the source: keys were cut off, empty or in another order there");
        }
        m_features.push_back(key.cell.feature);
    }

    // A build writes the data texts of its keys, each once, in ascending order, and no others.
    void checkData() {
        std::sort(m_features.begin(), m_features.end());
        m_features.erase(std::unique(m_features.begin(), m_features.end()), m_features.end());
        std::size_t offset = m_image.folded() ? kFoldedMarkBytes : 0;
        std::string_view before;
        for (const std::int32_t feature : m_features) {
            const std::string_view data = m_image.data(feature);
            if (static_cast<std::size_t>(feature) != offset || data <= before) break;
            before = data;
            offset += Dictionary::kRecordLengthBytes + data.size();
        }
        if (offset == m_image.featureBytes()) return;
        refuse("its data texts are not those of its keys in ascending order");
    }

    [[noreturn]] void refuse(const std::string& why) const {
        throw Failure{kTrouble,
                      {m_image.file()},
                      "no-source",
                      "no source builds to this image: " + why + "; keep the source it came from"};
    }

    const Trie& m_trie;
    const Image& m_image;
    std::int32_t m_number = 0;
    std::vector<std::int32_t> m_features;
};

std::string sourceOf(const Trie& trie) {
    std::string source;
    forEachSourceKey(trie, [&source](const Key& key) {
        source.append(sourceTextOf(key.text)) += '\t';
        source.append(withoutClosingTab(key.data)) += '\n';
    });
    return source;
}

// The first byte in which the image of `source` differs from `image`; npos when none does.
std::size_t differenceOf(const std::string& source, const Image& image) {
    dictionary::BuildOptions options;
    options.lenient = options.allowEmpty = true;
    options.folded = image.folded();
    dictionary::ImageBuffer buffer;
    dictionary::buildBytes(source, buffer, options);
    const std::string_view built = buffer.view(), given = image.bytes();
    if (built == given) return std::string::npos;
    const auto* const end = built.begin() + std::min(built.size(), given.size());
    return static_cast<std::size_t>(std::mismatch(built.begin(), end, given.begin()).first -
                                    built.begin());
}

// Reports where the image begins to differ from one built from its source.
void reportDifference(const Image& image, std::size_t byte) {
    const auto cell = byte / Dictionary::kCellBytes;
    const bool inCells = cell < static_cast<std::size_t>(image.cellCount());
    const std::string place =
        "byte " + std::to_string(byte) + (inCells ? " (cell " + std::to_string(cell) + ")" : "");
    report(DICTIONARY_WARNING, {image.file()}, "placed-otherwise",
           "the source builds to other bytes from " + place +
               " on, because the cells are placed differently; keys and data are the same");
}

int run(const DumpOptions& options) {
    const Image image(options.image);
    const Trie trie(image);
    Rebuild(trie).check();
    const std::string source = sourceOf(trie);
    const std::size_t difference = differenceOf(source, image);
    Output output;
    output.write(source);
    output.finish();
    if (image.folded()) remark(image.file() + ": folded; build its source with --fold");
    if (difference == std::string::npos) return kDone;
    reportDifference(image, difference);
    return kNone;
}

}  // namespace

void defineDump(CLI::App& program, Action& action) {
    static DumpOptions options;
    CLI::App& command =
        addCommand(program, action, "dump", "Write the source of an image", kDetails, options, run);
    addArgument(command, "IMAGE", options.image, "The image");
}

}  // namespace dictool
