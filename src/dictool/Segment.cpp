// segment: the longest keys of each line, one after the other.

#include "Filter.h"

namespace dictool {

namespace {

constexpr char kDetails[] =
    "Writes a line for every line read: the longest key at the first position that has one, then\n"
    "the same after it, and so on, each followed by a tab. The formats are those of search. With\n"
    "--keep, what lies between the keys is written likewise, without data (null in json).\n"
    "\nWith --count-field or --cost-field, of all ways to cut a line into keys and unknown\n"
    "characters the one that costs least: a key costs the logarithm of the sum of all counts "
    "minus\n"
    "that of its own count, and an unknown character counts 1; or a key costs what its field "
    "says.\n"
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
    addWeightOptions(command, options);
    addFlag(command, "-k,--keep", options.keep, "Write what lies between keys, too");
    addFlag(command, "--pieces", options.pieces,
            "The same, with each unknown character as a piece of its own");
    addFlag(command, "--join-runs", options.joinRuns,
            "The same, with each run of ASCII letters and digits as one piece");
}

}  // namespace dictool
