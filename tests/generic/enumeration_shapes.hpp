#pragma once
// The enumerations of the schema by name.

#include "tests/generic/node.hpp"

#include <utility>

namespace generic {

using NamedShapes = std::vector<std::pair<char const*, Shape const*>>;

NamedShapes field_enumerations();
NamedShapes lone_enumerations();

}  // namespace generic
