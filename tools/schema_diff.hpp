#pragma once

#include "json_input.hpp"

#include <string>
#include <vector>

namespace bradep {

/// Lists the changes from the schema `old` to `now` that make bytes written by `old` unreadable.
/// Both are in the form that `bradep schema` prints. Each change is one line, and each type is
/// reported once. Throws json_input::Misfit if `old` is not such a schema.
std::vector<std::string> breaking_changes(boost::json::value const& old,
                                          boost::json::value const& now);

/// The stems of those roots of `old` that `now` does not have, or has with another digest.
std::vector<std::string> changed_roots(boost::json::value const& old,
                                       boost::json::value const& now);

}  // namespace bradep
