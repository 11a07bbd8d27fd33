#pragma once
// Enumerations of the results interface.

#include <sml/core/declare.hpp>

namespace sml::Results_API_base::Check_Color_Type {

/// The colour of a check in the results interface.
SML_ENUM(T_Check_Color, DARKORANGE, GRAY, GREEN, ORANGE, RED);

}  // namespace sml::Results_API_base::Check_Color_Type

namespace sml::Results_API_base::GUI_Check_Classification_base {

/// The class of a check for a display tool.
SML_ENUM(T_GUI_Check_Classification_Class, CONTEXTUAL, CONTEXTUAL_INTRA, CONTEXTUAL_UNREACHABLE,
         CRITICAL, INTERNAL, PROVEN, ROBUSTNESS, ROBUSTNESS_WITH_DRS, UNCLASSIFIED);

}  // namespace sml::Results_API_base::GUI_Check_Classification_base
