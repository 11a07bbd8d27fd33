#pragma once
// Texts come from the analysed source and from tools: what a terminal would obey must not reach it.

#include <string>
#include <string_view>

namespace bradep {

// On one line and harmless: line breaks and tabs become blanks; other control characters, marks
// that turn the direction of writing, and bytes that are not UTF-8 become visible escapes.
std::string printable(std::string_view text);

// A JSON string with its quotes. What `printable` escapes is escaped here as JSON does; a byte that
// is not UTF-8 becomes U+FFFD.
std::string json_string(std::string_view text);

}  // namespace bradep
