#pragma once
// What checks speak of.

#include <sml/core/declare.hpp>

namespace sml::ChecksTypes {

/// What a check speaks of.
SML_ENUM(T_Scalar_Or_Float, SF_FLOAT, SF_OTHER, SF_SCALAR);

}  // namespace sml::ChecksTypes
