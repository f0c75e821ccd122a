// search: the keys that occur in each line.

#include "Filter.h"

namespace dictool {

namespace {

struct SearchOptions : MatchOptions {
    bool all = false;
    bool longest = false;
};

constexpr char kDetails[] =
    "Writes a line for every line read: the longest key at every position where one starts, each\n"
    "followed by a tab, or with -d: key, \"/\", position, \":\", data, tab. Without an option for\n"
    "it this is what the library's function search returns, which reads a line up to the first\n"
    "byte that is no UTF-8 and misses keys in front of a character above U+FFFF; --longest and\n"
    "--all pass over such bytes and characters.\n"
    "\ntsv: a line a match, of the number of its line, start, length, key and the data fields.\n"
    "json: a line a line, {\"line\":N,\"matches\":[{\"start\":..,\"length\":..,\"key\":..,\n"
    "\"data\":[..]},..]}. Lines are numbered through all files; positions count from 0.\n"
    "\nExit status: 0 when a key was found, 1 when none was.";

int run(const SearchOptions& options) {
    if (options.all) return filterMatches(options, DICTIONARY_FIND_ALL);
    return filterMatches(options,
                         options.longest ? DICTIONARY_FIND_LONGEST : DICTIONARY_FIND_AS_SEARCH);
}

}  // namespace

void defineSearch(CLI::App& program, Action& action) {
    static SearchOptions options;
    CLI::App& command = addCommand(program, action, "search", "Find the keys that occur in texts",
                                   kDetails, options, run);
    addMatchOptions(command, options);
    CLI::Option* all = command.add_flag("-a,--all", options.all, "Every key at every position");
    command.add_flag("-l,--longest", options.longest, "The longest key at every position")
        ->excludes(all);
}

}  // namespace dictool
