#pragma once

#include "json_input.hpp"

#include <string>
#include <vector>

namespace bradep {

/// What of a schema, as `bradep schema` prints it, breaks bytes of an older one. One line a change,
/// each type told once. Throws json_input::Misfit where `old` is no such schema.
std::vector<std::string> breaking_changes(boost::json::value const& old,
                                          boost::json::value const& now);

/// The stems of the roots of `old` that are not there with the same digest now.
std::vector<std::string> changed_roots(boost::json::value const& old,
                                       boost::json::value const& now);

}  // namespace bradep
