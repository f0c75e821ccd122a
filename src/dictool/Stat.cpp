// stat: an image in numbers.

#include <cstdio>

#include "Command.h"
#include "Output.h"
#include "Report.h"
#include "Statistics.h"

namespace dictool {

namespace {

struct StatOptions {
    std::string image;
    std::string format = "text";
};

constexpr char kDetails[] =
    R"(Writes sizes and the numbers of cells and keys; how many keys have how many characters; how
many nodes are at which depth, and how many have how many children. A cell takes 12 bytes. The
first one is the header and counts as free, as do the cells kept for first characters that no
key has.)";

void addRow(std::string& text, const std::string& label, const std::string& value) {
    constexpr std::size_t kLabelWidth = 18, kValueWidth = 14;
    const auto pad = [](std::size_t width, std::size_t size) {
        return std::string(size < width ? width - size : 1, ' ');
    };
    text += label + pad(kLabelWidth, label.size()) + pad(kValueWidth, value.size()) + value + '\n';
}

std::string fixed(double value, const char* unit) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f%s", value, unit);
    return text;
}

void addHistogram(std::string& text, const std::string& title, const Histogram& histogram) {
    text += "\n" + title + "\n";
    for (const Histogram::Bin& bin : histogram.bins()) {
        addRow(text, "  " + labelOf(bin), std::to_string(bin.count));
    }
}

std::string textOf(const Statistics& statistics) {
    const struct {
        const char* label;
        std::string value;
    } rows[] = {
        {"image bytes", std::to_string(statistics.imageBytes)},
        {"cells", std::to_string(statistics.cells)},
        {"  used", std::to_string(statistics.usedCells)},
        {"  free", std::to_string(statistics.cells - statistics.usedCells)},
        {"  used share", fixed(100 * statistics.usedShare(), "%")},
        {"data bytes", std::to_string(statistics.featureBytes)},
        {"data texts", std::to_string(statistics.dataTexts)},
        {"keys", std::to_string(statistics.keys)},
        {"folded", statistics.folded ? "yes" : "no"},
        {"key bytes", std::to_string(statistics.keyBytes)},
        {"bytes per key", fixed(statistics.bytesPerKey(), "")},
    };
    std::string text;
    for (const auto& row : rows) addRow(text, row.label, row.value);
    addHistogram(text, "keys by characters", statistics.keysByLength);
    addHistogram(text, "nodes by depth", statistics.nodesByDepth);
    addHistogram(text, "nodes by children", statistics.nodesByChildren);
    return text;
}

int run(const StatOptions& options) {
    const Statistics statistics = statisticsOf(Image(options.image));
    print(options.format == "json" ? jsonOf(statistics).dump() + "\n" : textOf(statistics));
    return kDone;
}

}  // namespace

void defineStat(CLI::App& program, Action& action) {
    static StatOptions options;
    CLI::App& command =
        addCommand(program, action, "stat", "Show an image in numbers", kDetails, options, run);
    addArgument(command, "IMAGE", options.image, "The image");
    addChoice(command, "-f,--format", options.format, {"text", "json"}, "How to write it");
}

}  // namespace dictool
