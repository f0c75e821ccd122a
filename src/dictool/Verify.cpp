// verify: whether images are sound.

#include <algorithm>

#include "Command.h"
#include "Dictionary.h"
#include "Output.h"
#include "Printable.h"
#include "Report.h"

namespace dictool {

namespace {

struct VerifyOptions {
    std::vector<std::string> images;
    bool quiet = false;
};

constexpr char kDetails[] =
    R"(Says ok for an image that no lookup of any text can leave, and for any other file what is
wrong with it, with the cell and the byte. All other commands verify the images they are given,
too.

Exit status: 0 when all are sound; 4 when one is not; 2 when one cannot be read.)";

Status verify(const std::string& file, bool quiet) {
    DictionaryError error;
    if (dictionaryVerifyImage(file.c_str(), &error) != DICTIONARY_OK) {
        const Failure failure = failureOf(error, file);
        report(failure);
        return failure.status;
    }
    if (!quiet) {
        Output output;
        output.write(printable(file) + ": ok\n");
    }
    return kDone;
}

int run(const VerifyOptions& options) {
    Status worst = kDone;
    for (const std::string& file : options.images) {
        worst = std::max(worst, verify(file, options.quiet));
    }
    Output().finish();
    return worst;
}

}  // namespace

void defineVerify(CLI::App& program, Action& action) {
    static VerifyOptions options;
    CLI::App& command = addCommand(program, action, "verify", "Check whether images are sound",
                                   kDetails, options, run);
    addArguments(command, "IMAGE", options.images, "Images").required();
    addFlag(command, "-q,--quiet", options.quiet, "Say nothing about sound images");
}

}  // namespace dictool
