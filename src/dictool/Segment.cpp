// segment: the longest keys of each line, one after the other.

#include "Filter.h"

namespace dictool {

namespace {

constexpr char kDetails[] =
    R"(Writes one line per line read: the longest key at the first position that has one, the same
after its end, and so on, each followed by a tab. The formats are those of search. With --keep,
the text between keys is written in the same way, without data (null in json).

With --count-field or --cost-field, writes the cheapest of all ways to cut a line into keys and
unknown characters: a key costs the logarithm of the sum of all counts minus that of its own
count, and an unknown character counts 1; or a key costs what its field says.

Exit status: 0 when a key was found, 1 when none was.)";

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
    addFlag(command, "-k,--keep", options.keep, "Also write the text between keys");
    addFlag(command, "--pieces", options.pieces,
            "The same, with each unknown character as a piece of its own");
    addFlag(command, "--join-runs", options.joinRuns,
            "The same, with each run of ASCII letters and digits as one piece");
}

}  // namespace dictool
