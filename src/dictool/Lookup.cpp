// lookup: whether texts are keys, and their data.

#include "Filter.h"

namespace dictool {

namespace {

struct LookupOptions : FilterOptions {
    std::vector<std::string> keys;
    bool missing = false;
};

constexpr char kDetails[] =
    R"(Without KEY, each line of standard input is a key. Writes one line per key that is in the
image: the key, a tab, its data fields separated by tabs; with -f tsv the number of the key
comes first; with -f json there is one line for every key, found or not, {"line":N,"key":..,
"found":true,"data":[..]}. --missing writes the keys that are not in the image instead, in text
form as they were given.

A newline is written as \n, a tab in a key as \t and a backslash as \\. With -z everything is
written as it is.

Exit status: 0 when a key was found, or with --missing when one was not; else 1.)";

FormatAnswer formatOf(const LookupOptions& options) {
    if (options.format == "tsv") return answerTable;
    if (options.format == "json") return answerJson;
    return options.missing ? answerKey : answerText;
}

class LookupWork : public LineWork {
public:
    LookupWork(const dictionary::Image& image, const LookupOptions& options)
        : m_image(image),
          m_format(formatOf(options)),
          m_writesAll(options.format == "json" && !options.missing),
          m_wanted(!options.missing),
          m_end(options.end()),
          m_escapes(!options.zeroEnded) {}

    bool take(std::string_view line, std::uint64_t number, std::string&) override {
        m_keys.push_back({line.data(), line.size()});
        m_numbers.push_back(number);
        return false;
    }

    // Many keys in one call take less time.
    bool endBlock(std::string& out) override {
        m_data.resize(m_keys.size());
        dictionaryLookupKeys(m_image.handle(), m_keys.data(), m_keys.size(), m_data.data());
        bool any = false;
        for (std::size_t i = 0; i < m_keys.size(); ++i) any |= answer(i, out);
        m_keys.clear();
        m_numbers.clear();
        return any;
    }

private:
    bool answer(std::size_t i, std::string& out) const {
        const bool found = m_data[i].bytes != nullptr;
        if (m_writesAll || found == m_wanted) {
            m_format(out, {{m_keys[i].bytes, m_keys[i].size},
                           m_numbers[i],
                           found,
                           {m_data[i].bytes, m_data[i].size},
                           m_end,
                           m_escapes});
        }
        return found == m_wanted;
    }

    const dictionary::Image& m_image;
    FormatAnswer m_format;
    bool m_writesAll;
    bool m_wanted;
    char m_end;
    bool m_escapes;
    std::vector<DictionaryText> m_keys;  // of the block
    std::vector<std::uint64_t> m_numbers;
    std::vector<DictionaryText> m_data;
};

int run(const LookupOptions& options) {
    const auto prepare = [&](const dictionary::Image& image) {
        return [&] { return std::make_unique<LookupWork>(image, options); };
    };
    if (options.keys.empty()) return filterFiles(options, {}, prepare);
    return filterTexts(options, options.keys, prepare);
}

}  // namespace

void defineLookup(CLI::App& program, Action& action) {
    static LookupOptions options;
    CLI::App& command =
        addCommand(program, action, "lookup", "Look up whole keys", kDetails, options, run);
    addArgument(command, "IMAGE", options.image, "The image");
    addArguments(command, "KEY", options.keys, "Keys; if none, one per line of standard input");
    addFlag(command, "-m,--missing", options.missing, "Write the keys that are not there instead");
    addMoreImages(command, options.moreImages);
    addLineFormat(command, options.format, options.zeroEnded);
    addFilterOptions(command, options);
}

}  // namespace dictool
