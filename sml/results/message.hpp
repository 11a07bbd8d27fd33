#pragma once
// Messages without what changes though the finding stays the same.

#include <string>
#include <string_view>

namespace sml::results {

/// The message without places and temporary names: numbers of lines and columns, directories,
/// addresses, names that are made anew in each run. Numbers that are values stay.
std::string without_places(std::string_view message);

/// The same for the texts of a payload, which is JSON, and without the positions in it.
std::string payload_without_places(std::string_view json);

/// A message that has been made by one of these, without any numbers.
std::string without_numbers(std::string_view message);

}  // namespace sml::results
