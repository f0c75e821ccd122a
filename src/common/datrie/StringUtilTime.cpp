// Date and time texts.

#include <time.h>

#include <cstddef>
#include <string>
#include <vector>

#include "StringUtil.h"

namespace Dictionary {

namespace {

enum Piece : std::size_t { kYear, kMonth, kDay, kHour, kMinute, kSecond, kPieces };

constexpr long kFirstYear = 1900;
constexpr long kFirstMonth = 1;

bool isWithin(int value, int first, int last) {
    return first <= value && value <= last;
}

int field(const std::string& piece, long first = 0) {
    return static_cast<int>(Str2Long(piece) - first);
}

bool readDate(const std::vector<std::string>& pieces, std::tm& date) {
    date.tm_year = field(pieces[kYear], kFirstYear);
    date.tm_mon = field(pieces[kMonth], kFirstMonth);
    date.tm_mday = field(pieces[kDay]);
    // Kept: the day is not checked against its month.
    return date.tm_year >= 0 && isWithin(date.tm_mon, 0, 11) && isWithin(date.tm_mday, 1, 31);
}

bool readTimeOfDay(const std::vector<std::string>& pieces, std::tm& time) {
    time.tm_hour = field(pieces[kHour]);
    time.tm_min = field(pieces[kMinute]);
    time.tm_sec = field(pieces[kSecond]);
    constexpr int kLastLeapSecond = 61;
    return isWithin(time.tm_hour, 0, 23) && isWithin(time.tm_min, 0, 59) &&
           isWithin(time.tm_sec, 0, kLastLeapSecond);
}

}  // namespace

bool Str2TimeStruct(const std::string& timeText, std::tm* timeStruct) {
    if (timeText.empty()) return false;
    timeStruct->tm_isdst = -1;

    static const std::string flags = " -:";
    std::vector<std::string> pieces;
    if (SplitStr(timeText, flags, pieces) < static_cast<int>(kPieces)) return false;
    // Kept: what is stored before a check fails stays stored.
    return readDate(pieces, *timeStruct) && readTimeOfDay(pieces, *timeStruct);
}

std::time_t Str2Seconds(const std::string& timeText) {
    std::tm timeStruct{};
    return Str2TimeStruct(timeText, &timeStruct) ? std::mktime(&timeStruct) : 0;
}

std::time_t Str2SecondsSimple(const std::string& timeText) {
    const std::time_t seconds = Str2Seconds(timeText);
    // Kept: the standard offset is used even in daylight saving time.
    return seconds < 1 ? 0 : seconds - timezone;
}

}  // namespace Dictionary
