#pragma once
// The names of the stages, for people.

#include <sml/results/finding.hpp>

#include <string_view>

namespace sml::results {

/// As in the column `stage`; null for `Stage::none`.
char const* name_of(Stage stage);

/// The stage with this name; `Stage::none` if there is none.
Stage stage_named(std::string_view name);

/// What is equal in pairs of this stage.
std::string_view meaning_of(Stage stage);

}  // namespace sml::results
