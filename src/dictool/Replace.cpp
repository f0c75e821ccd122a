// replace: texts with their keys replaced by a data field.

#include "Filter.h"

namespace dictool {

namespace {

struct ReplaceOptions : TextOptions {
    unsigned field = 1;
    std::string alternatives;
    bool removeEmpty = false;
};

constexpr char kDetails[] =
    R"(Writes every line read, with each of its keys replaced by the first data field of the key's
first record, or by that of --field. The keys are those of segment: the longest ones from the
start on, or with --count-field or --cost-field the cheapest. Everything else is copied byte
for byte. A key whose field is empty or missing stays.

Exit status: 0 when a line was changed, 1 when none was.)";

class ReplaceWork : public LineWork {
public:
    ReplaceWork(const dictionary::Image& image, const DictionaryFindOptions& findOptions,
                const ReplaceOptions& options)
        : m_image(image), m_findOptions(findOptions), m_end(options.end()) {
        m_options.size = sizeof m_options;
        m_options.field = options.field;
        m_options.removeEmpty = options.removeEmpty;
        if (!options.alternatives.empty()) m_options.alternatives = options.alternatives.c_str();
    }
    ReplaceWork(const ReplaceWork&) = delete;
    ReplaceWork& operator=(const ReplaceWork&) = delete;
    ~ReplaceWork() override { dictionaryFreeReplacement(&m_result); }

    bool take(std::string_view line, std::uint64_t number, std::string& out) override {
        DictionaryError error;
        if (dictionaryReplaceKeys(m_image.handle(), &m_findOptions, &m_options,
                                  {line.data(), line.size()}, &m_result, &error) != DICTIONARY_OK) {
            throw failureOf(error, "line " + std::to_string(number));
        }
        const std::string_view text(m_result.bytes, m_result.size);
        out.append(text) += m_end;
        return text != line;
    }

private:
    const dictionary::Image& m_image;
    DictionaryFindOptions m_findOptions;
    DictionaryReplaceOptions m_options = {};
    char m_end;
    DictionaryReplacement m_result = {};
};

int run(const ReplaceOptions& options) {
    return filterFiles(options, options.files, [&](const dictionary::Image& image) {
        const auto request = std::make_shared<FindRequest>(image, DICTIONARY_FIND_SEGMENT, options);
        return [&image, &options, request] {
            return std::make_unique<ReplaceWork>(image, request->options(), options);
        };
    });
}

}  // namespace

void defineReplace(CLI::App& program, Action& action) {
    static ReplaceOptions options;
    CLI::App& command =
        addCommand(program, action, "replace", "Replace keys by data", kDetails, options, run);
    addTextOptions(command, options);
    addNumber(command, "--field", options.field, "The data field that replaces a key, from 1");
    addText(command, "--alternatives", options.alternatives,
            "What separates alternatives in the field; the first one is taken")
        .placeholder("TEXT");
    addFlag(command, "--remove-empty", options.removeEmpty,
            "Remove a key whose field is empty or missing");
    addWeightOptions(command, options);
    addZero(command, options.zeroEnded);
    addFilterOptions(command, options);
}

}  // namespace dictool
