#pragma once
// Abstract truth values.

#include <sml/core/declare.hpp>

namespace sml::Abstract_Bool {

/// An abstract truth value.
SML_ENUM(T_Abstract_Bool, B_BOTTOM, B_FALSE, B_MAY, B_TRUE);

}  // namespace sml::Abstract_Bool
