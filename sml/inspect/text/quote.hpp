#pragma once
// Bytes and texts in messages.

#include <cstddef>
#include <string>
#include <string_view>

namespace sml::inspect {

/// The text in double quotes, on one line. Bytes that are not UTF-8, and characters that a terminal
/// would obey, become \xHH. A text longer than `longest` bytes is cut, and its length is added.
std::string quoted(std::string_view text, std::size_t longest = 80);

/// The text on one line, without quotes. Line breaks and tabs become blanks, other characters that
/// a terminal would obey \u{...}, and bytes that are not UTF-8 \x...
std::string printable(std::string_view text);

/// A single byte: as a character if it is printable, else in hexadecimal.
std::string byte_text(char byte);

}  // namespace sml::inspect
