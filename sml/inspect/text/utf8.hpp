#pragma once
// Strict UTF-8: overlong forms and surrogates are no characters.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sml::inspect {

struct Character {
    std::uint32_t code;    ///< the byte itself where it is not valid
    std::size_t   length;  ///< in bytes
    bool          valid;
};

/// The character that `text`, which is not empty, starts with. A byte that belongs to no
/// well-formed sequence stands for itself.
Character first_character(std::string_view text);

/// Adds a character to UTF-8.
void append_character(std::string& text, std::uint32_t code);

/// Control characters, marks that turn the direction of writing, line and paragraph separators.
bool is_obeyed_by_terminals(std::uint32_t code);

}  // namespace sml::inspect
