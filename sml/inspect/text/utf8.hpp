#pragma once
// Strict UTF-8: overlong forms and surrogates are no characters.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sml::inspect {

struct Character {
    std::uint32_t code;    ///< the byte itself if it is not valid
    std::size_t   length;  ///< in bytes
    bool          valid;
};

/// The first character of `text`, which must not be empty. A byte that belongs to no well-formed
/// sequence is a character by itself, which is not valid.
Character first_character(std::string_view text);

/// Appends a character as UTF-8.
void append_character(std::string& text, std::uint32_t code);

/// Whether a character is a control character, a mark that changes the direction of writing, or a
/// line or paragraph separator.
bool is_obeyed_by_terminals(std::uint32_t code);

}  // namespace sml::inspect
