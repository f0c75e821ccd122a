// diff: the differences between the keys of two images.

#include "Command.h"
#include "Format.h"
#include "Image.h"
#include "Output.h"
#include "Report.h"

namespace dictool {

namespace {

struct DiffOptions {
    std::string first;
    std::string second;
    bool quiet = false;
};

constexpr char kDetails[] =
    R"(Writes one line per difference, in the order of the keys: - and a key that only the first
image has, + and a key that only the second has, ~ and a key whose data differs; then a tab
and the data fields, for ~ those of the second image. A newline is written as \n, a tab in a
key as \t and a backslash as \\.

Exit status: 0 when there is no difference, 1 when there is one.)";

// An image's keys, one after the other.
class Keys {
public:
    explicit Keys(const std::string& file)
        : m_image(file), m_keys(m_image.opened().keys()), m_next(m_keys.begin()) {}

    void advance() { ++m_next; }
    bool left() const { return m_next != dictionary::Keys::iterator(); }
    std::string_view key() const { return m_next->text; }
    std::string_view data() const { return m_next->data; }

private:
    Image m_image;
    dictionary::Keys m_keys;
    dictionary::Keys::iterator m_next;
};

// Below 0 when only the first image has the next key, above 0 when only the second one has it.
int compare(const Keys& first, const Keys& second) {
    if (!first.left() || !second.left()) return int{second.left()} - int{first.left()};
    return first.key().compare(second.key());
}

void write(Output& output, std::string_view sign, const Keys& keys) {
    std::string line(sign);
    appendEscaped(line, keys.key(), kTorn);
    line += '\t';
    appendEscaped(line, withoutClosingTab(keys.data()), kTornFields);
    output.add(line += '\n');
}

int run(const DiffOptions& options) {
    Keys first(options.first);
    Keys second(options.second);
    Output output;
    bool differs = false;
    while (first.left() || second.left()) {
        const int order = compare(first, second);
        const bool same = order == 0 && first.data() == second.data();
        differs |= !same;
        if (differs && options.quiet) break;
        if (!same)
            write(output, order < 0 ? "-" : order > 0 ? "+" : "~", order < 0 ? first : second);
        if (order <= 0) first.advance();
        if (order >= 0) second.advance();
    }
    output.finish();
    return differs ? kNone : kDone;
}

}  // namespace

void defineDiff(CLI::App& program, Action& action) {
    static DiffOptions options;
    CLI::App& command = addCommand(program, action, "diff", "Compare the keys of two images",
                                   kDetails, options, run);
    addArgument(command, "A", options.first, "The first image");
    addArgument(command, "B", options.second, "The second image");
    addFlag(command, "-q,--quiet", options.quiet, "Write nothing");
}

}  // namespace dictool
