// segment: the longest keys of each line, one behind the other.

#include "Filter.h"

namespace dictool {

namespace {

constexpr char kDetails[] =
    "Writes a line for every line read: the longest key at the first position that has one, then\n"
    "the same behind it, and so on, each followed by a tab. The formats are those of search. With\n"
    "--keep, what lies between the keys is written likewise, without data (null in json).\n"
    "\nExit status: 0 when a key was found, 1 when none was.";

int run(const MatchOptions& options) {
    return filterMatches(options, DICTIONARY_FIND_SEGMENT);
}

}  // namespace

void defineSegment(CLI::App& program, Action& action) {
    static MatchOptions options;
    CLI::App& command =
        addCommand(program, action, "segment", "Cut texts into keys", kDetails, options, run);
    addMatchOptions(command, options);
    command.add_flag("-k,--keep", options.keep, "Write what lies between keys, too");
}

}  // namespace dictool
