// The forms in which matches and keys are written. JSON is appended straight to the output: the
// library that writes the statistics would first make an object of each match.

#ifndef DICTOOL_FORMAT_H
#define DICTOOL_FORMAT_H

#include <cstdint>
#include <string>
#include <string_view>

#include "Dictionary.h"

namespace dictool {

// What positions count.
enum class Unit { kByte, kCharacter };

// A stretch of a line, measured in bytes: a match, or, without data, what is between two matches.
using Piece = DictionaryMatch;

// The pieces of one line, by their start.
struct LinePieces {
    std::string_view line;
    std::uint64_t number;
    const Piece* pieces;
    std::size_t count;
    Unit unit;
    char end;          // of each line that is written
    bool escapes;      // whether texts go through appendEscaped()
    bool namesImages;  // whether images are numbered, in JSON
};

// Each appends a line's pieces to `out`.
using FormatPieces = void (*)(std::string& out, const LinePieces& pieces);
void formatKeys(std::string& out, const LinePieces& pieces);      // as the function `search` does
void formatKeysData(std::string& out, const LinePieces& pieces);  // as it does with data
void formatTable(std::string& out, const LinePieces& pieces);
void formatJson(std::string& out, const LinePieces& pieces);

// A key of a list.
struct KeyLine {
    std::string_view key;
    std::string_view data;
    std::uint64_t number;
    char end;
    bool escapes;
};

void keyText(std::string& out, const KeyLine& line);
void keyData(std::string& out, const KeyLine& line);
void keyTable(std::string& out, const KeyLine& line);
void keyJson(std::string& out, const KeyLine& line);

// The answer for one key.
struct Answer {
    std::string_view key;
    std::uint64_t number;
    bool found;
    std::string_view data;
    char end;
    bool escapes;
};

using FormatAnswer = void (*)(std::string& out, const Answer& answer);
void answerKey(std::string& out, const Answer& answer);  // as it came
void answerText(std::string& out, const Answer& answer);
void answerTable(std::string& out, const Answer& answer);
void answerJson(std::string& out, const Answer& answer);

inline std::string_view dataOf(const Piece& piece) {
    return {piece.data.bytes, piece.data.size};
}

// A data text without the tab that closes its last field.
inline std::string_view withoutClosingTab(std::string_view data) {
    if (!data.empty() && data.back() == '\t') data.remove_suffix(1);
    return data;
}

// What is escaped in a key, and in data, where the tabs between fields stay.
constexpr std::string_view kTorn = "\n\\\t";
constexpr std::string_view kTornFields = "\n\\";

// Appends `text`, with a backslash and a letter for each of the characters in `special`, which is
// one of the above or empty. A backslash becomes two.
void appendEscaped(std::string& out, std::string_view text, std::string_view special);

// Appends a JSON string. Each byte that is not UTF-8 becomes U+FFFD.
void appendJson(std::string& out, std::string_view text);

// Appends the fields of a data text as a JSON list of strings.
void appendJsonFields(std::string& out, std::string_view data);

}  // namespace dictool

#endif
