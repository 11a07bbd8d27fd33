#pragma once
// Enumerations of the forms that a viewer reads.

#include <sml/core/declare.hpp>

namespace sml::Internal_Form_Datas {

/// The kind of a call.
SML_ENUM(T_CallKind, ACCEPT_CALL, HIGH_ORDER_CALL, POINTER_TO_MEMBER_CALL, REGULAR_CALL,
         VIRTUAL_CALL);

/// The type that a check speaks of.
SML_ENUM(T_Chk_Data_Type, FLOAT, SCALAR, SIGNED, UNSIGNED);

/// The category of an information form.
SML_ENUM(T_Info_Category, IC_FNC, IC_FNR, IC_IPT, IC_NTC, IC_NTL, IC_TOOLTIP_INFO, IC_VAI, IC_VCC,
         IC_VCS, IC_VOBJ, IC_VOBJFE, IC_VOFP, IC_VOL, IC_VOO, IC_VOP, IC_VOR);

}  // namespace sml::Internal_Form_Datas
