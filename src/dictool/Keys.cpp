// keys: the keys of an image, all of them or those that begin with a prefix.

#include "Dictionaries.h"
#include "Filter.h"
#include "Output.h"
#include "Report.h"

namespace dictool {

namespace {

struct KeysOptions {
    std::string image;
    std::vector<std::string> moreImages;
    std::string prefix;
    std::string format = "text";
    unsigned limit = 0;
    bool count = false;
    bool data = false;
    bool zeroEnded = false;
};

constexpr char kDetails[] =
    R"(Writes the keys that begin with PREFIX, or all keys, in the order of their bytes: one line
per key; with --data the key, a tab and its data fields separated by tabs. tsv: the number of
the line, key and data fields. json: {"key":..,"data":[..]}. --count writes only their number.

A newline is written as \n, a tab in a key as \t and a backslash as \\. With -z everything is
written as it is.

Exit status: 0 when there is such a key, 1 when there is none.)";

void formatKey(std::string& out, const KeyLine& line, const KeysOptions& options) {
    if (options.format == "json") return keyJson(out, line);
    if (options.format == "tsv") return keyTable(out, line);
    return options.data ? keyData(out, line) : keyText(out, line);
}

int run(const KeysOptions& options) {
    const Dictionaries dictionaries(options.image, options.moreImages);
    const char end = options.zeroEnded ? '\0' : '\n';
    Output output;
    std::uint64_t count = 0;
    std::string out;
    for (const dictionary::Key& key : dictionaries.get().keys(options.prefix)) {
        ++count;
        if (!options.count) {
            out.clear();
            formatKey(out, {key.text, key.data, count, end, !options.zeroEnded}, options);
            output.add(out);
        }
        if (count == options.limit) break;
    }
    if (options.count) output.add(std::to_string(count) + '\n');
    output.finish();
    return count == 0 ? kNone : kDone;
}

}  // namespace

void defineKeys(CLI::App& program, Action& action) {
    static KeysOptions options;
    CLI::App& command = addCommand(program, action, "keys", "List keys", kDetails, options, run);
    addArgument(command, "IMAGE", options.image, "The image");
    addText(command, "PREFIX", options.prefix, "What the keys begin with").placeholder("");
    addMoreImages(command, options.moreImages);
    addLineFormat(command, options.format, options.zeroEnded);
    addFlag(command, "-c,--count", options.count, "Write how many keys there are");
    addFlag(command, "-d,--data", options.data, "In text form, also write data");
    addNumber(command, "-l,--limit", options.limit, "At most this many keys; 0 for all");
}

}  // namespace dictool
