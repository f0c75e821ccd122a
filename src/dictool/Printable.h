// Names of files and texts of users, made safe for a terminal.

#ifndef DICTOOL_PRINTABLE_H
#define DICTOOL_PRINTABLE_H

#include <cstddef>
#include <string>
#include <string_view>

namespace dictool {

// The bytes of the legal character that `text` begins with, 0 when there is none.
std::size_t characterBytes(std::string_view text);

// The characters of `text`. A byte that begins no legal one counts as one.
std::size_t countCharacters(std::string_view text);

// `text` with each byte of a control character, of one that turns the direction of writing, and of
// what is no UTF-8 written as \x and two digits.
std::string printable(std::string_view text);

}  // namespace dictool

#endif
