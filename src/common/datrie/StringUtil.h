/// @file
/// String utilities. Strings are byte strings. Functions that respect double-byte characters follow
/// the GBK rule: a byte with the high bit set and the byte after it are one character.
///
/// Nothing here throws exceptions of its own. C strings and pointers must not be null. All
/// functions may run concurrently on different outputs, unless a comment says otherwise.

#ifndef DICTIONARY_STRING_UTIL_H
#define DICTIONARY_STRING_UTIL_H

#include <ctime>
#include <string>
#include <vector>

#include "DictionaryExport.h"

namespace Dictionary {

// ---- Separator notation

/// Turns a separator in its written form into the bytes it means: a backslash with three decimal
/// digits, and a backslash with "u" and four decimal digits, each become the one byte of that value
/// modulo 256. The digits are decimal: "\009" is a tab, "\010" a newline. Everything else,
/// including other backslashes, is kept unchanged. The result may hold zero bytes.
DICTIONARY_EXPORT std::string getEscapeSeparator(std::string separator);

// ---- Splitting

// Each SplitStr clears `pieces`, fills it with non-empty pieces in the order of the text and
// returns their number. The other arguments must not be elements of `pieces`.

/// Cuts `text` at every `separator`.
DICTIONARY_EXPORT int SplitStr(const std::string& text, char separator,
                               std::vector<std::string>& pieces);

/// Collects what is between an `open` and the first `close` after it; pairs do not nest. Text
/// outside the pairs is ignored, and so is everything from an `open` that is never closed.
DICTIONARY_EXPORT int SplitStr(const std::string& text, char open, char close,
                               std::vector<std::string>& pieces);

/// Cuts `text` at every byte that is one of `separators`.
DICTIONARY_EXPORT int SplitStr(const std::string& text, const std::string& separators,
                               std::vector<std::string>& pieces);

/// Does not split: leaves `pieces` as it is and returns its size.
DICTIONARY_EXPORT int SplitStrByStr(const std::string& text, const std::string& separator,
                                    std::vector<std::string>& pieces);

// ---- Trimming, replacing, case

/// `text` without the blanks, tabs, carriage returns and line feeds at its two ends.
DICTIONARY_EXPORT std::string trim(const std::string& text);

/// Replaces every `from` by `to`, from left to right; replaced text is not searched again. `from`
/// must not be empty: the call would never end. Always returns 0.
DICTIONARY_EXPORT int ReplaceAll(std::string& text, const std::string& from, const std::string& to);

/// Replaces every byte `from` by `to` and returns the number of replacements.
DICTIONARY_EXPORT int ReplaceChar(std::string& text, char from, char to);

/// A copy of `text` with its bytes a to z in upper case. It goes byte by byte, so second bytes of
/// double-byte characters change, too.
DICTIONARY_EXPORT std::string String2Upper(const std::string& text);

/// A copy of `text` with its bytes A to Z in lower case, byte by byte as in String2Upper.
DICTIONARY_EXPORT std::string String2Lower(const std::string& text);

/// Cuts `text` to at most `maxLength` bytes without splitting a double-byte character, and returns
/// its new length. A first byte without a second one at the end of `text` is cut off, too.
DICTIONARY_EXPORT unsigned long GBKSubStr(std::string& text, unsigned long maxLength);

// ---- Numbers

/// The decimal number that `text` begins with, after optional white space and an optional sign; 0
/// if there are no digits. What follows the number is ignored. A number too large or too small for
/// a long becomes the nearest long.
DICTIONARY_EXPORT long Str2Long(std::string text);

/// The low 32 bits of what Str2Long returns.
DICTIONARY_EXPORT int Str2Int(std::string text);

/// `value` in decimal, with a minus sign if it is negative.
DICTIONARY_EXPORT std::string Int2Str(int value);

/// `value` in decimal, with a minus sign if it is negative.
DICTIONARY_EXPORT std::string Long2Str(long value);

/// 0 if `text` is one or more decimal digits and nothing else, -1 if not.
DICTIONARY_EXPORT int IsDigitString(std::string text);

// ---- Matching

/// 1 if the whole `text` matches the whole `pattern`, 0 if not. In the pattern an asterisk matches
/// any bytes or none, a question mark one byte or none (so "a?" matches "a"), and any other byte
/// matches itself. Time is at most proportional to the product of both lengths, memory to the
/// pattern's length.
DICTIONARY_EXPORT int wildcard(const char* pattern, const char* text);

// ---- Statements, times, directories

/// The number of items that an SQL statement selects: one more than the commas between the first
/// "select" and the first "from ", not counting those in quotes or parentheses. Quotes and
/// parentheses do not nest: the first apostrophe or closing parenthesis ends either. The result is
/// 1 when "from " comes first. Keywords are found in lower case only, anywhere in the statement up
/// to its first zero byte.
///
/// Returns 0, with a message on standard output, for a statement with "delete ", "truncate " or
/// "update ". Returns -1, with a message on standard error, for one without "from " or "select".
/// Returns -1 without a message for an empty statement.
DICTIONARY_EXPORT int GetItemNumFromSQL(std::string statement);

/// Reads year, month, day, hour, minute and second from the first six numbers of `timeText`. Any
/// mix of blanks, hyphens and colons separates the numbers. Returns true when year >= 1900, month 1
/// to 12, day 1 to 31 (in any month), hour 0 to 23, minute 0 to 59 and second 0 to 61.
///
/// Fields that are stored before a check fails stay stored: tm_isdst (as -1) for any text but the
/// empty one, the date when there are six numbers, and the time of day when the date is valid.
/// tm_wday and tm_yday are never set.
DICTIONARY_EXPORT bool Str2TimeStruct(const std::string& timeText, std::tm* timeStruct);

/// The seconds since the epoch at the local time `timeText`, in the form above; 0 if it is invalid,
/// -1 if the C library cannot convert it. The time zone is the process's, as for mktime.
DICTIONARY_EXPORT std::time_t Str2Seconds(const std::string& timeText);

/// The same with `timeText` taken as UTC: the zone's standard offset is removed from what
/// Str2Seconds returns. In daylight saving time the result is off by the saving. 0 when Str2Seconds
/// returns less than 1.
DICTIONARY_EXPORT std::time_t Str2SecondsSimple(const std::string& timeText);

/// Sets `files` to the entries of the directory `path`, each as the path, "/" and the name, in
/// directory order, and returns their number. Subdirectories are entries like others; what is in
/// them is not listed. Only names with one of the letters d, u, m and p are listed: "map.txt" is,
/// "note.txt" is not.
///
/// For a path that is not a directory, `files` is that path alone; if it does not exist, a line on
/// standard output says so. A directory that cannot be opened has no files.
DICTIONARY_EXPORT int GetAllFileByDir(std::string path, std::vector<std::string>& files);

// ---- Text cleaning

/// Cleans GBK or ASCII bytes. Double-byte characters (0x81 to 0xFD, then 0x40 to 0xFE but not
/// 0x7F), printable ASCII, tabs, line ends and the bytes 3 and 4 are copied, and every other byte
/// becomes a blank. Numeric character references of common punctuation ("&#65292;") become the
/// ASCII they look like; those of surrogates, U+FFFE and U+FFFF become a blank; others are copied.
/// A reference has three to five digits. Even a short one is recognised only when eight bytes of
/// input are left from its ampersand on.
///
/// Reads at most `length` bytes of `text`, and the one after them when the last one can begin a
/// double-byte character. Stops early when more than 4094 bytes have been written. Adds the number
/// of single bytes that became blanks to *replacedCount and sets *consumed to the number of bytes
/// used, which is length + 1 when a character reaches past the end. A `length` below 1 returns the
/// empty text.
///
/// Returns a static buffer with a terminating zero byte, valid until the next call. Two threads
/// must not call it at once.
DICTIONARY_EXPORT unsigned char* Escape(const unsigned char* text, int length, int* replacedCount,
                                        int* consumed);

/// Cleans `text` in place and returns its length, which stays the same. The bytes 1 and 2, bytes
/// that the C library takes for neither graphic, control nor blank, and a first byte of a
/// double-byte character at the very end become blanks. Double-byte characters are kept, except for
/// a byte 1 or 2 in one.
DICTIONARY_EXPORT int SimpleEscape(std::string& text);

// ---- Fatal check

/// Writes `message` as a line to standard output and ends the process with exit status 255 if
/// `condition` is not 0; otherwise returns 0.
DICTIONARY_EXPORT int Judge(int condition, const char* message);

}  // namespace Dictionary

#endif
