#pragma once
// How variables are initialised.

#include <sml/core/declare.hpp>

namespace sml::Variable_Value {

/// How a variable is initialised.
SML_ENUM(T_Init_Mode, MODE_DRS_INIT, MODE_DRS_RANDOM, MODE_RANDOM, MODE_USER_INIT);

}  // namespace sml::Variable_Value
