#pragma once

#include "inspect/type.hpp"

#include <string>

namespace sml::inspect {

/// What a writer makes of the value that a reader has of bytes that are not unsafe.
std::string read_and_write(Root const& root, char const* bytes);

}  // namespace sml::inspect
