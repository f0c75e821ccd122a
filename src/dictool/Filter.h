// What the commands that go through lines have in common.

#ifndef DICTOOL_FILTER_H
#define DICTOOL_FILTER_H

#include <string>
#include <vector>

#include "Command.h"
#include "Dictionary.hpp"
#include "Format.h"
#include "Pipeline.h"

namespace dictool {

struct FilterOptions {
    std::string image;
    std::string format = "text";
    bool zeroEnded = false;
    bool lineBuffered = false;
    bool exitZero = false;
    bool windows = false;
    unsigned threads = 1;

    char end() const { return zeroEnded ? '\0' : '\n'; }
};

void addFilterOptions(CLI::App& command, FilterOptions& options);

// Runs lines through works made over the options' image and writes what they give. Lines of files
// come from `files`, or from standard input when that is empty.
using MakeImageWork = std::function<std::unique_ptr<LineWork>(const dictionary::Image& image)>;
int filterFiles(const FilterOptions& options, const std::vector<std::string>& files,
                const MakeImageWork& makeWork);
// The same for the texts themselves, a line each.
int filterTexts(const FilterOptions& options, const std::vector<std::string>& texts,
                const MakeImageWork& makeWork);

// The same for commands that find matches, which have these options, too.
struct MatchOptions : FilterOptions {
    std::vector<std::string> files;
    std::string offset = "byte";
    bool data = false;
    bool keep = false;  // writes what lies between matches, too
};

void addMatchOptions(CLI::App& command, MatchOptions& options);

// `mode` is one of DictionaryFindMode.
int filterMatches(const MatchOptions& options, int mode);

}  // namespace dictool

#endif
