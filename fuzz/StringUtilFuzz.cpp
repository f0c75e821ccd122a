// Compares the string utilities with slow and obvious ways to do the same.

#include "StringUtil.h"

#include "BoundaryText.h"
#include "Fuzz.h"
#include "SlowText.h"

namespace {

using namespace Dictionary;
using Strings = std::vector<std::string>;

Strings nonEmpty(Strings pieces) {
    pieces.erase(std::remove(pieces.begin(), pieces.end(), ""), pieces.end());
    return pieces;
}

std::string joined(const Strings& pieces, const std::string& joint) {
    std::string text = pieces[0];
    for (std::size_t i = 1; i < pieces.size(); ++i) text += joint + pieces[i];
    return text;
}

void requireSplitting(const std::string& text, const std::string& marks) {
    const std::string first = marks.substr(0, 1);
    const Strings atFirst = nonEmpty(split(text, first));
    Strings pieces;
    require(SplitStr(text, first[0], pieces) == static_cast<int>(atFirst.size()), "pieces count");
    require(pieces == atFirst, "a byte splits");
    std::string even = text;
    for (const char mark : marks) ReplaceChar(even, mark, first[0]);
    SplitStr(text, marks, pieces);
    require(pieces == nonEmpty(split(even, first)), "any byte of a set splits");
    Strings enclosed;
    for (std::size_t at = 0, end; (at = text.find(first, at)) != text.npos; at = end + 1) {
        if ((end = text.find(marks.back(), at + 1)) == text.npos) break;
        enclosed.push_back(text.substr(at + 1, end - at - 1));
    }
    SplitStr(text, first[0], marks.back(), pieces);
    require(pieces == nonEmpty(enclosed), "brackets enclose");
    std::string replaced = text;
    ReplaceAll(replaced, marks, "<" + marks);
    require(replaced == joined(split(text, marks), "<" + marks), "all are replaced, each once");
}

void requireNotation(const std::string& text) {
    std::string expected;
    for (std::size_t at = 0; at < text.size();) {
        const bool isLong = text.compare(at, 2, "\\u") == 0;
        const std::size_t prefix = isLong ? 2 : 1, digits = isLong ? 4 : 3;
        const std::string number = text.substr(std::min(at + prefix, text.size()), digits);
        const bool isNumber = number.find_first_not_of("0123456789") == number.npos;
        const bool isEscape = text[at] == '\\' && number.size() == digits && isNumber;
        expected += isEscape ? static_cast<char>(std::stoi(number)) : text[at];
        at += isEscape ? prefix + digits : 1;
    }
    require(getEscapeSeparator(text) == expected, "numbers stand for bytes");
}

void requireCleaning(const std::string& text) {
    const char* const placed = placeAtPageEnd(text + '\0');
    const Cleaned cleaned = clean(placed, text.size());
    require(std::get<2>(cleaned) <= text.size() + 1, "no more is used than there is");
    if (text.find("&#") == text.npos && text.find('\0') == text.npos) {
        require(cleaned == cleanSlowly(text + '\0', text.size()), "bytes are cleaned");
    }
    std::string once = text;
    require(SimpleEscape(once) == static_cast<int>(text.size()), "cleaning keeps the size");
    std::string twice = once;
    SimpleEscape(twice);
    require(once == twice, "what is clean stays as it is");
}

void requireCutting(const std::string& text, std::size_t most) {
    std::size_t kept = 0;
    for (std::size_t width = 0; (kept += width) < text.size();) {
        width = (text[kept] & 0x80) != 0 ? 2 : 1;
        if (kept + width > std::min(most, text.size())) break;
    }
    std::string cut = text;
    require(GBKSubStr(cut, most) == kept && cut == text.substr(0, kept), "pairs stay together");
    const std::string trimmed = trim(text);
    const bool isIn = text.find(trimmed) != text.npos;
    require(isIn && trim(' ' + trimmed + "\n") == trimmed, "trimming takes ends off");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    muteOutput();
    Input input(data, size);
    const std::size_t most = input.byte();
    const std::string marks = '|' + input.text(input.below(4));
    const std::string text = input.text(200);
    requireSplitting(text, marks);
    requireNotation(text);
    requireCleaning(text);
    requireCutting(text, most);
    const std::string pattern = text.substr(0, std::min(text.find('='), std::size_t{10}));
    const std::string rest = text.substr(pattern.size()).substr(0, 10);
    require(wildcard(pattern.c_str(), rest.c_str()) == matchSlowly(pattern.c_str(), rest.c_str()),
            "wildcards match");
    const bool digits = !text.empty() && text.find_first_not_of("0123456789") == text.npos;
    require(IsDigitString(text) == (digits ? 0 : -1), "digits are recognised");
    require(Str2Long(Long2Str(Str2Long(text))) == Str2Long(text), "numbers come back");
    const std::string items = text.substr(0, text.find('\0'));
    require(GetItemNumFromSQL("select" + items + "from ") <=
                1 + std::count(items.begin(), items.end(), ','),
            "items are counted by commas");
    return 0;
}
