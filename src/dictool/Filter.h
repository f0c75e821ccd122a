// What the commands that go through lines have in common.

#ifndef DICTOOL_FILTER_H
#define DICTOOL_FILTER_H

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Command.h"
#include "Dictionary.hpp"
#include "Format.h"
#include "Pipeline.h"

namespace dictool {

struct FilterOptions {
    std::string image;
    std::vector<std::string> moreImages;
    std::string format = "text";
    bool zeroEnded = false;
    bool lineBuffered = false;
    bool exitZero = false;
    bool windows = false;
    unsigned threads = 1;

    char end() const { return zeroEnded ? '\0' : '\n'; }
};

void addMoreImages(CLI::App& command, std::vector<std::string>& images);
void addFilterOptions(CLI::App& command, FilterOptions& options);

// Called with the open image. Returns the function that makes the work of each thread.
using Prepare = std::function<MakeLineWork(const dictionary::Image& image)>;

// Opens the images of `options`, has the works go through the lines of `files`, or of standard
// input when that is empty, and writes what they append. Returns a Status.
int filterFiles(const FilterOptions& options, const std::vector<std::string>& files,
                const Prepare& prepare);
// The same for texts, each of which is one line.
int filterTexts(const FilterOptions& options, const std::vector<std::string>& texts,
                const Prepare& prepare);

// For commands that find keys in texts.
struct TextOptions : FilterOptions {
    std::vector<std::string> files;
    bool wholeWords = false;
    bool everyImage = false;
    unsigned countField = 0;  // 0 for none
    unsigned costField = 0;
    double unknownCost = 0;

    bool isWeighted() const { return countField != 0 || costField != 0; }
};

void addTextOptions(CLI::App& command, TextOptions& options);
void addWeightOptions(CLI::App& command, TextOptions& options);

// How keys are found, with the segmenter where there are weights.
class FindRequest {
public:
    // `mode` is one of DictionaryFindMode. It is used unless there are weights.
    FindRequest(const dictionary::Image& image, int mode, const TextOptions& options);

    const DictionaryFindOptions& options() const { return m_options; }

private:
    DictionaryFindOptions m_options = {};
    std::optional<dictionary::Segmenter> m_segmenter;
};

// For commands that write the keys that they find.
struct MatchOptions : TextOptions {
    std::string offset = "byte";
    bool data = false;
    bool keep = false;      // writes what is between matches, too
    bool pieces = false;    // the same, one piece per character
    bool joinRuns = false;  // and one per run of ASCII letters and digits

    bool wantsPieces() const { return pieces || joinRuns; }
};

void addMatchOptions(CLI::App& command, MatchOptions& options);

// `mode` is as for FindRequest.
int filterMatches(const MatchOptions& options, int mode);

}  // namespace dictool

#endif
