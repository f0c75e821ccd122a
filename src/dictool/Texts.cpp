// What the commands that find keys in texts have in common.

#include "Filter.h"

namespace dictool {

FindRequest::FindRequest(const dictionary::Image& image, int mode, const TextOptions& options) {
    m_options.size = sizeof m_options;
    m_options.mode = mode;
    m_options.wholeWords = options.wholeWords;
    m_options.everyImage = options.everyImage;
    if (!options.isWeighted()) return;
    const bool counts = options.countField != 0;
    try {
        m_segmenter.emplace(image,
                            counts ? dictionary::Weights::counts : dictionary::Weights::costs,
                            counts ? options.countField : options.costField, options.unknownCost);
    } catch (const dictionary::Error& error) {
        // With several images, the error itself says which one.
        throw failureOf(error.record(), options.moreImages.empty() ? options.image : "");
    }
    m_options.mode = DICTIONARY_FIND_WEIGHTED;
    m_options.segmenter = m_segmenter->segmenter();
}

void addTextOptions(CLI::App& command, TextOptions& options) {
    addArgument(command, "IMAGE", options.image, "The image");
    addArguments(command, "FILE", options.files,
                 "Texts; standard input if none is given, and for -");
    addMoreImages(command, options.moreImages);
    addFlag(command, "-w,--word", options.wholeWords,
            "Only keys that neither begin nor end inside a word");
}

void addWeightOptions(CLI::App& command, TextOptions& options) {
    const Option count = addNumber(command, "--count-field", options.countField,
                                   "Cut by the counts in this data field, from 1");
    Option cost = addNumber(command, "--cost-field", options.costField,
                            "Cut by the costs in this data field, from 1");
    cost.excludes(count);
    addReal(command, "--unknown-cost", options.unknownCost, "What an unknown character costs")
        .needs(cost);
}

}  // namespace dictool
