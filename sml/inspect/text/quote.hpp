#pragma once
// Bytes and texts as people are shown them.

#include <cstddef>
#include <string>
#include <string_view>

namespace sml::inspect {

/// In double quotes, on one line; bytes that are not UTF-8 and what a terminal would obey stand as
/// \xHH, and a text longer than `longest` bytes is cut with its length told.
std::string quoted(std::string_view text, std::size_t longest = 80);

/// On one line and harmless, without quotes: line breaks and tabs become blanks, other characters
/// that a terminal would obey \u{...}, bytes that are not UTF-8 \x...
std::string printable(std::string_view text);

/// A single byte, as a character where it is printable.
std::string byte_text(char byte);

}  // namespace sml::inspect
