#pragma once
// Paths to values, as in `checks[("src/a.c",3)].category.OVFL.ovfl_data`.

#include <sml/inspect/type.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Appends to `path` the step from a value of type `owner` to its part with index `part`. In a map,
/// `key` is the text of the entry's key, and the step leads to the entry's value; with an empty
/// `key`, it leads to the key.
void append_step(std::string& path, Type const& owner, std::uint64_t part, std::string_view key);

}  // namespace sml::inspect
