// search: the keys that occur in each line.

#include "Filter.h"

namespace dictool {

namespace {

struct SearchOptions : MatchOptions {
    bool all = false;
    bool classic = false;
    bool longest = false;  // the default
};

constexpr char kDetails[] =
    R"(Writes one line per line read: the longest key at every position where one starts, each
followed by a tab, or with -d: key, "/", position, ":", data, tab. Bytes that are not UTF-8 are
skipped. --classic writes what the library's function search returns, which reads a line up to
the first such byte or NUL and misses keys before a character above U+FFFF.

tsv: one line per match: the number of its line, start, length, key and the data fields.
json: one line per line, {"line":N,"matches":[{"start":..,"length":..,"key":..,
"data":[..]},..]}; with -D also "image":N, 0 for IMAGE. Lines are numbered through all files;
positions count from 0.

In tsv, and in data in text form, a newline is written as \n, a tab in a key as \t and a
backslash as \\. With -z or --classic everything is written as it is.

Exit status: 0 when a key was found, 1 when none was.)";

int run(const SearchOptions& options) {
    if (options.all) return filterMatches(options, DICTIONARY_FIND_ALL);
    return filterMatches(options,
                         options.classic ? DICTIONARY_FIND_CLASSIC : DICTIONARY_FIND_LONGEST);
}

}  // namespace

void defineSearch(CLI::App& program, Action& action) {
    static SearchOptions options;
    CLI::App& command = addCommand(program, action, "search", "Find the keys that occur in texts",
                                   kDetails, options, run);
    addMatchOptions(command, options);
    const Option all = addFlag(command, "-a,--all", options.all, "Every key at every position");
    Option longest = addFlag(command, "-l,--longest", options.longest,
                             "The longest key at every position; the default");
    const Option every = addFlag(command, "--every-image", options.everyImage,
                                 "Find a key of several images in each of them");
    addFlag(command, "--classic", options.classic, "What the library's function search returns")
        .excludes(all)
        .excludes(longest)
        .excludes(every)
        .excludes(optionNamed(command, "--word"))
        .excludes(optionNamed(command, "--dictionary"));
    longest.excludes(all);
}

}  // namespace dictool
