#pragma once
// Options of the commands that match findings.

#include <sml/results/paths.hpp>
#include "command.hpp"

#include <optional>
#include <string>
#include <vector>

namespace bradep {

/// Declares --map.
void declare_map(CLI::App& app, std::vector<std::string>& maps);

/// The roots that --map gives. Throws a usage error for a value without `=`.
std::vector<sml::results::MovedRoot> roots_of(std::vector<std::string> const& maps);

/// Throws IoFailure for a name that is given and is that of no directory.
void refuse_missing_directory(std::optional<std::string> const& name);

}  // namespace bradep
