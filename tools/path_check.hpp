#pragma once

#include <sml/inspect/type.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace bradep {

/// Returns why no value of the type has this path: the step that does not fit, what is expected
/// there, and the nearest name. Returns nothing if a value can have it. With `to_container`, the
/// path must also lead to a list, set or map.
std::optional<std::string> path_complaint(sml::inspect::Type const& type, std::string_view path,
                                          bool to_container);

/// The step that starts at offset `at` of the path, without its dot.
std::string_view step_at(std::string_view path, std::size_t at);

/// The path with `*` in place of each key and index: `checks[*].category`.
std::string path_without_keys(std::string_view path);

/// "checks[3]", or "the root" for the empty path.
std::string part_name(std::string_view path);

}  // namespace bradep
