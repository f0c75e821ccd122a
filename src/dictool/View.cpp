// view: an image as a page for a browser.

#include "Command.h"
#include "File.h"
#include "Output.h"
#include "Page.h"
#include "Statistics.h"

namespace dictool {

namespace {

struct ViewOptions {
    std::string image;
    std::string page;
};

constexpr char kDetails[] =
    R"(Writes one self-contained page: a picture of how full the cells are, how long the keys are,
how the nodes branch, and sizes.)";

constexpr std::size_t kPictureWidth = 256;
constexpr std::size_t kPictureHeight = 96;

// The share of used cells in each pixel of the picture, one digit per pixel: 0 to 63 in the order
// of kDigits. An image with fewer cells than pixels has one pixel per cell.
std::string occupancyOf(const Image& image, std::size_t pixels) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr std::size_t kTop = sizeof kDigits - 2;
    const auto cells = static_cast<std::size_t>(image.cellCount());
    std::string picture;
    for (std::size_t pixel = 0; pixel < pixels; ++pixel) {
        const std::size_t first = cells * pixel / pixels, end = cells * (pixel + 1) / pixels;
        std::size_t used = 0;
        for (std::size_t cell = first; cell < end; ++cell) {
            if (cell > 0 && image.isUsed(static_cast<std::int32_t>(cell))) ++used;
        }
        picture += kDigits[(used * kTop + (end - first) / 2) / (end - first)];
    }
    return picture;
}

// JSON that cannot end the script element around it.
std::string scriptText(const nlohmann::ordered_json& value) {
    std::string text = value.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    for (std::size_t at = 0; (at = text.find('<', at)) != std::string::npos;) {
        text.replace(at, 1, "\\u003c");
    }
    return text;
}

std::string pageOf(const Image& image) {
    constexpr std::string_view kPlace = "/*DATA*/";
    nlohmann::ordered_json data = jsonOf(statisticsOf(image));
    const auto cells = static_cast<std::size_t>(image.cellCount());
    data["file"] = image.file();
    data["width"] = kPictureWidth;
    data["occupancy"] = occupancyOf(image, std::min(cells, kPictureWidth * kPictureHeight));
    std::string page = kPage;
    return page.replace(page.find(kPlace), kPlace.size(), scriptText(data));
}

int run(const ViewOptions& options) {
    if (isOneFile(options.image, options.page)) {
        throw Failure{kTrouble,
                      {options.page},
                      "same-file",
                      "the page would replace the image; give it another name"};
    }
    const std::string page = pageOf(Image(options.image));
    Output output(options.page);
    output.write(page);
    output.finish();
    return kDone;
}

}  // namespace

void defineView(CLI::App& program, Action& action) {
    static ViewOptions options;
    CLI::App& command = addCommand(program, action, "view", "Show an image as a page for a browser",
                                   kDetails, options, run);
    addArgument(command, "IMAGE", options.image, "The image");
    addText(command, "-o,--output", options.page, "The page; - for standard output")
        .required()
        .placeholder("FILE");
}

}  // namespace dictool
