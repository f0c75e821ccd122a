// File names and other texts of users, made safe for a terminal.

#ifndef DICTOOL_PRINTABLE_H
#define DICTOOL_PRINTABLE_H

#include <cstddef>
#include <string>
#include <string_view>

namespace dictool {

// How many bytes the legal character at the start of `text` has; 0 if there is none.
std::size_t characterBytes(std::string_view text);

// How many characters `text` has. A byte that begins no legal character counts as one.
std::size_t countCharacters(std::string_view text);

// `text` with some characters written as \x and two digits per byte: control characters, characters
// that change the direction of writing, and what is not UTF-8.
std::string printable(std::string_view text);

}  // namespace dictool

#endif
