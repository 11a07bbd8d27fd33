#pragma once

#include <sml/inspect/type.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace bradep {

/// Why a path leads nowhere in any value of the type: the step that does not fit, what belongs
/// there, and the nearest name. None where it can lead to something, or to a list, set or table
/// where that is asked for.
std::optional<std::string> path_complaint(sml::inspect::Type const& type, std::string_view path,
                                          bool to_table);

/// The step of a path that starts at `at`, without its dot.
std::string_view step_at(std::string_view path, std::size_t at);

/// The path with a star for each key and index: `checks[*].category`.
std::string path_shape(std::string_view path);

/// "checks[3]", or "the root" for the empty path.
std::string part_name(std::string_view path);

}  // namespace bradep
