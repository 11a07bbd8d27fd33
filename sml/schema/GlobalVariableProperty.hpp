#pragma once
// Properties of global variables.

#include <sml/core/declare.hpp>

namespace sml::GlobalVariableProperty {

/// What a critical section is made of.
SML_ENUM(T_CS_KIND, C_SECTION, MUTEX);

}  // namespace sml::GlobalVariableProperty
