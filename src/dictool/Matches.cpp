// Filters that write the matches found in each line.

#include <algorithm>

#include "Filter.h"

namespace dictool {

namespace {

FormatPieces formatOf(const MatchOptions& options) {
    if (options.format == "tsv") return formatTable;
    if (options.format == "json") return formatJson;
    return options.data ? formatKeysData : formatKeys;
}

class MatchWork : public LineWork {
public:
    MatchWork(const dictionary::Image& image, const DictionaryFindOptions& findOptions,
              const MatchOptions& options)
        : m_image(image),
          m_options(findOptions),
          m_format(formatOf(options)),
          m_unit(options.offset == "char" ? Unit::kCharacter : Unit::kByte),
          m_keep(options.keep && !options.wantsPieces()),
          m_end(options.end()),
          m_escapes(!options.zeroEnded && findOptions.mode != DICTIONARY_FIND_CLASSIC),
          m_namesImages(!options.moreImages.empty()) {
        m_options.unknownPieces = options.wantsPieces();
        m_options.joinedRuns = options.joinRuns;
    }
    MatchWork(const MatchWork&) = delete;
    MatchWork& operator=(const MatchWork&) = delete;
    ~MatchWork() override { dictionaryFreeMatches(&m_matches); }

    bool take(std::string_view line, std::uint64_t number, std::string& out) override {
        DictionaryError error;
        if (dictionaryFindMatches(m_image.handle(), &m_options, {line.data(), line.size()},
                                  &m_matches, &error) != DICTIONARY_OK) {
            throw failureOf(error, "line " + std::to_string(number));
        }
        LinePieces pieces = {line,   number, m_matches.items, m_matches.count,
                             m_unit, m_end,  m_escapes,       m_namesImages};
        if (m_keep) {
            addStretches(line);
            pieces.pieces = m_pieces.data();
            pieces.count = m_pieces.size();
        }
        m_format(out, pieces);
        return std::any_of(m_matches.items, m_matches.items + m_matches.count,
                           [](const Piece& piece) { return piece.data.bytes != nullptr; });
    }

private:
    // Fills the pieces with the matches, which do not overlap, and with the text around them.
    void addStretches(std::string_view line) {
        m_pieces.clear();
        std::size_t passed = 0;
        const auto passTo = [&](std::size_t next) {
            if (passed < next) m_pieces.push_back({passed, next - passed, {}, 0, 0});
        };
        for (std::size_t i = 0; i < m_matches.count; ++i) {
            const DictionaryMatch& match = m_matches.items[i];
            passTo(match.start);
            m_pieces.push_back(match);
            passed = match.start + match.length;
        }
        passTo(line.size());
    }

    const dictionary::Image& m_image;
    DictionaryFindOptions m_options;
    FormatPieces m_format;
    Unit m_unit;
    bool m_keep;
    char m_end;
    bool m_escapes;
    bool m_namesImages;
    DictionaryMatches m_matches = {};
    std::vector<Piece> m_pieces;
};

}  // namespace

void addMatchOptions(CLI::App& command, MatchOptions& options) {
    addTextOptions(command, options);
    addFlag(command, "-d,--data", options.data, "In text form, also write position and data");
    addChoice(command, "--offset", options.offset, {"byte", "char"}, "What positions count");
    addLineFormat(command, options.format, options.zeroEnded);
    addFilterOptions(command, options);
}

int filterMatches(const MatchOptions& options, int mode) {
    return filterFiles(options, options.files, [&](const dictionary::Image& image) {
        const auto request = std::make_shared<FindRequest>(image, mode, options);
        return [&image, &options, request] {
            return std::make_unique<MatchWork>(image, request->options(), options);
        };
    });
}

}  // namespace dictool
