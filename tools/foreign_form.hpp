#pragma once

#include <string_view>

namespace bradep {

/// What else bytes are than what a command was to be given, as their start shows it: "compressed by
/// gzip", "JSON text". Empty where it does not.
std::string_view foreign_form(std::string_view bytes);

constexpr std::string_view json_form = "JSON text";

}  // namespace bradep
