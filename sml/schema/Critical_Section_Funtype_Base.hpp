#pragma once
// What functions do to critical sections.

#include <sml/core/declare.hpp>

namespace sml::Critical_Section_Funtype_Base {

/// What a function does to a critical section.
SML_ENUM(T, Destroy, Lock, Unlock);

}  // namespace sml::Critical_Section_Funtype_Base
