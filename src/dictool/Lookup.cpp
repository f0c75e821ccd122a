// lookup: whether texts are keys, and their data.

#include <optional>

#include "Filter.h"

namespace dictool {

namespace {

struct LookupOptions : FilterOptions {
    std::vector<std::string> keys;
    bool missing = false;
};

constexpr char kDetails[] =
    "Without a KEY, takes every line of standard input for one. Writes a line for every key that\n"
    "is in the image: the key, a tab, its data fields separated by tabs; with -f tsv the number\n"
    "of the key in front; with -f json a line for every key, {\"line\":N,\"key\":..,\n"
    "\"found\":true,\"data\":[..]}. --missing writes the keys that are not in the image instead,\n"
    "in text form just as they came.\n"
    "\nA newline is written \\n, a tab in a key \\t and a backslash \\\\, but with -z everything "
    "is\n"
    "written as it is.\n"
    "\nExit status: 0 when a line was to be written for a key, other than one of \"found\":false;\n"
    "1 when none was.";

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

    bool take(std::string_view line, std::uint64_t number, std::string& out) override {
        const std::optional<std::string_view> data = m_image.lookup(line);
        const bool found = data.has_value();
        if (m_writesAll || found == m_wanted) {
            m_format(out, {line, number, found, data.value_or(""), m_end, m_escapes});
        }
        return found == m_wanted;
    }

private:
    const dictionary::Image& m_image;
    FormatAnswer m_format;
    bool m_writesAll;
    bool m_wanted;
    char m_end;
    bool m_escapes;
};

int run(const LookupOptions& options) {
    const auto makeWork = [&](const dictionary::Image& image) {
        return std::make_unique<LookupWork>(image, options);
    };
    if (options.keys.empty()) return filterFiles(options, {}, makeWork);
    return filterTexts(options, options.keys, makeWork);
}

}  // namespace

void defineLookup(CLI::App& program, Action& action) {
    static LookupOptions options;
    CLI::App& command =
        addCommand(program, action, "lookup", "Look up whole keys", kDetails, options, run);
    addArgument(command, "IMAGE", options.image, "The image");
    addArguments(command, "KEY", options.keys, "Keys; none for one per line of standard input");
    command.add_flag("-m,--missing", options.missing, "Write the keys that are not there instead");
    addFilterOptions(command, options);
}

}  // namespace dictool
