#pragma once

#include <string_view>

namespace bradep {

/// Names the file format that the start of the bytes shows, if a command would not expect it:
/// "compressed by gzip", "JSON text". Empty if no such format is recognised.
std::string_view foreign_form(std::string_view bytes);

constexpr std::string_view json_form = "JSON text";

}  // namespace bradep
