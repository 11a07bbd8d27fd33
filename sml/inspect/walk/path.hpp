#pragma once
// Paths to values, as in `checks[("src/a.c",3)].category.OVFL.ovfl_data`.

#include <sml/inspect/type.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace sml::inspect {

/// Adds a step to a path: into a part of `owner`, of a map into the value behind a key as paths
/// show it, or into the key where that is empty.
void append_step(std::string& path, Type const& owner, std::uint64_t part, std::string_view key);

}  // namespace sml::inspect
