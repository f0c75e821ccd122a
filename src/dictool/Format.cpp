#include "Format.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "Printable.h"

namespace dictool {

namespace {

constexpr unsigned char kFirstPrintable = 0x20;
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

void append(std::string& out, std::uint64_t number) {
    char digits[std::numeric_limits<std::uint64_t>::digits10 + 1];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

// Positions in a line, asked for in ascending order.
class Positions {
public:
    explicit Positions(const LinePieces& pieces) : m_line(pieces.line), m_unit(pieces.unit) {}

    std::size_t of(std::size_t byte) {
        if (m_unit == Unit::kByte) return byte;
        m_position += countCharacters(m_line.substr(m_byte, byte - m_byte));
        m_byte = byte;
        return m_position;
    }
    std::size_t length(std::string_view text) const {
        return m_unit == Unit::kByte ? text.size() : countCharacters(text);
    }

private:
    std::string_view m_line;
    Unit m_unit;
    std::size_t m_byte = 0;
    std::size_t m_position = 0;
};

// Calls `write(text, start, length, piece)` for every piece.
template <class Write>
void forEachPiece(const LinePieces& pieces, Write write) {
    Positions positions(pieces);
    for (const Piece* piece = pieces.pieces; piece != pieces.pieces + pieces.count; ++piece) {
        const std::string_view text = pieces.line.substr(piece->start, piece->length);
        const std::size_t start = positions.of(piece->start);
        write(text, start, positions.length(text), *piece);
    }
}

void appendJsonEscape(std::string& out, char character) {
    constexpr char kHex[] = "0123456789abcdef";
    if (character == '"' || character == '\\') {
        out += '\\';
        out += character;
    } else {
        const auto value = static_cast<unsigned char>(character);
        out.append("\\u00").append(1, kHex[value >> 4]).append(1, kHex[value & 0xF]);
    }
}

// Whether an ASCII character needs no escape.
bool isPlainJson(char character) {
    const auto value = static_cast<unsigned char>(character);
    return value >= kFirstPrintable && value != '"' && value != '\\';
}

void appendJsonPiece(std::string& out, std::string_view key, std::size_t start, std::size_t length,
                     const Piece& piece, bool namesImage) {
    out += "{\"start\":";
    append(out, start);
    out += ",\"length\":";
    append(out, length);
    out += ",\"key\":";
    appendJson(out, key);
    out += ",\"data\":";
    if (piece.data.bytes == nullptr) {
        out += "null";
    } else {
        appendJsonFields(out, dataOf(piece));
        if (namesImage) append(out += ",\"image\":", piece.image);
    }
    out += '}';
}

void appendRow(std::string& out, std::string_view key, std::string_view data, char end,
               bool escapes) {
    appendEscaped(out, key, escapes ? kTorn : "");
    out += '\t';
    appendEscaped(out, withoutClosingTab(data), escapes ? kTornFields : "");
    out += end;
}

// A search per character is far faster than one search for any of them.
bool holdsOneOf(std::string_view text, std::string_view special) {
    return std::any_of(special.begin(), special.end(), [text](char character) {
        return text.find(character) != std::string_view::npos;
    });
}

char letterOf(char special) {
    if (special == '\n') return 'n';
    return special == '\t' ? 't' : special;
}

}  // namespace

void formatKeys(std::string& out, const LinePieces& pieces) {
    for (const Piece* piece = pieces.pieces; piece != pieces.pieces + pieces.count; ++piece) {
        out.append(pieces.line, piece->start, piece->length) += '\t';
    }
    out += pieces.end;
}

void formatKeysData(std::string& out, const LinePieces& pieces) {
    const std::string_view special = pieces.escapes ? kTornFields : "";
    forEachPiece(pieces, [&](auto text, auto start, auto, const Piece& piece) {
        out.append(text) += '/';
        append(out, start);
        out += ':';
        appendEscaped(out, dataOf(piece), special);
        out += '\t';
    });
    out += pieces.end;
}

void formatTable(std::string& out, const LinePieces& pieces) {
    forEachPiece(pieces, [&](auto text, auto start, auto length, const Piece& piece) {
        for (const std::uint64_t number : {pieces.number, std::uint64_t{start}, {length}}) {
            append(out, number);
            out += '\t';
        }
        appendRow(out, text, dataOf(piece), pieces.end, pieces.escapes);
    });
}

void formatJson(std::string& out, const LinePieces& pieces) {
    out += "{\"line\":";
    append(out, pieces.number);
    out += ",\"matches\":[";
    bool first = true;
    forEachPiece(pieces, [&](auto text, auto start, auto length, const Piece& piece) {
        if (!first) out += ',';
        first = false;
        appendJsonPiece(out, text, start, length, piece, pieces.namesImages);
    });
    out += "]}";
    out += pieces.end;
}

void answerKey(std::string& out, const Answer& answer) {
    out.append(answer.key) += answer.end;
}

void answerText(std::string& out, const Answer& answer) {
    appendRow(out, answer.key, answer.data, answer.end, answer.escapes);
}

void answerTable(std::string& out, const Answer& answer) {
    append(out, answer.number);
    out += '\t';
    answerText(out, answer);
}

void answerJson(std::string& out, const Answer& answer) {
    out += "{\"line\":";
    append(out, answer.number);
    out += ",\"key\":";
    appendJson(out, answer.key);
    out += answer.found ? ",\"found\":true,\"data\":" : ",\"found\":false}";
    if (answer.found) {
        appendJsonFields(out, answer.data);
        out += '}';
    }
    out += answer.end;
}

void keyText(std::string& out, const KeyLine& line) {
    appendEscaped(out, line.key, line.escapes ? kTorn : "");
    out += line.end;
}

void keyData(std::string& out, const KeyLine& line) {
    appendRow(out, line.key, line.data, line.end, line.escapes);
}

void keyTable(std::string& out, const KeyLine& line) {
    append(out, line.number);
    out += '\t';
    keyData(out, line);
}

void keyJson(std::string& out, const KeyLine& line) {
    out += "{\"key\":";
    appendJson(out, line.key);
    out += ",\"data\":";
    appendJsonFields(out, line.data);
    out += '}';
    out += line.end;
}

void appendEscaped(std::string& out, std::string_view text, std::string_view special) {
    if (holdsOneOf(text, special)) {
        for (std::size_t at; (at = text.find_first_of(special)) != std::string_view::npos;) {
            out.append(text, 0, at) += '\\';
            out += letterOf(text[at]);
            text.remove_prefix(at + 1);
        }
    }
    out += text;
}

void appendJson(std::string& out, std::string_view text) {
    out += '"';
    std::size_t kept = 0;  // the start of what can be copied as it is
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t bytes = characterBytes(text.substr(at));
        if (bytes > 1 || (bytes == 1 && isPlainJson(text[at]))) {
            at += bytes;
            continue;
        }
        out.append(text, kept, at - kept);
        if (bytes == 0) {
            out += kReplacement;
        } else {
            appendJsonEscape(out, text[at]);
        }
        kept = ++at;
    }
    out.append(text, kept, text.size() - kept);
    out += '"';
}

void appendJsonFields(std::string& out, std::string_view data) {
    out += '[';
    if (!data.empty()) {
        std::string_view fields = withoutClosingTab(data);
        for (std::size_t tab; (tab = fields.find('\t')) != std::string_view::npos;) {
            appendJson(out, fields.substr(0, tab));
            out += ',';
            fields.remove_prefix(tab + 1);
        }
        appendJson(out, fields);
    }
    out += ']';
}

}  // namespace dictool
