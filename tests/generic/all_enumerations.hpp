#pragma once
// Every enumeration of the schema. Names are relative to `sml`. A new one needs one line here; one
// that a new field is the first to hold moves to the other list. `X` takes the type.

#include <sml/schema/Abstract_Bool.hpp>
#include <sml/schema/Blocks.hpp>
#include <sml/schema/Checker_Catalog.hpp>
#include <sml/schema/Checks.hpp>
#include <sml/schema/ChecksTypes.hpp>
#include <sml/schema/Critical_Section_Funtype_Base.hpp>
#include <sml/schema/Events.hpp>
#include <sml/schema/Expressiveness.hpp>
#include <sml/schema/FunctionsTypes.hpp>
#include <sml/schema/GlobalVariableProperty.hpp>
#include <sml/schema/IL.hpp>
#include <sml/schema/Infos.hpp>
#include <sml/schema/InfosTypes.hpp>
#include <sml/schema/Internal_Form_Datas.hpp>
#include <sml/schema/Results_API_base.hpp>
#include <sml/schema/Technology.hpp>
#include <sml/schema/Variable_Value.hpp>

/// The enumerations that are the type of a field or payload.
#define FIELD_ENUMERATIONS(X)                                                            \
    X(Checks::T_Leak_Kind)                                                               \
    X(Events::T_DataRaceAccessType)                                                      \
    X(Expressiveness::T_coefficients)                                                    \
    X(Expressiveness::T_constant)                                                        \
    X(Expressiveness::T_relation)                                                        \
    X(IL::T_Loop_Kind)                                                                   \
    X(IL::T_Memory_Builtin)                                                              \
    X(IL::T_Pointer_Builtin)                                                             \
    X(IL::T_Relational_Binop)                                                            \
    X(Infos::Concurrency_Info::T_Routine)                                                \
    X(Infos::Stack_Escape_Info_Data::T_Stack_Escape_Info)                                \
    X(Infos::T_NTC_Kind)                                                                 \
    X(InfosTypes::T_Operation_Computation_Mode)                                          \
    X(InfosTypes::T_Scope)                                                               \
    X(InfosTypes::T_Stdlib_Param_Kind)                                                   \
    X(Results_API_base::GUI_Check_Classification_base::T_GUI_Check_Classification_Class) \
    X(Variable_Value::T_Init_Mode)

/// The enumerations that no other type uses.
#define LONE_ENUMERATIONS(X)                              \
    X(Abstract_Bool::T_Abstract_Bool)                     \
    X(Blocks::T_BlockUnreachable)                         \
    X(Checker_Catalog::T_Checker)                         \
    X(Checks::T_Check_Color)                              \
    X(Checks::T_Standard_Lib_Family)                      \
    X(ChecksTypes::T_Scalar_Or_Float)                     \
    X(Critical_Section_Funtype_Base::T)                   \
    X(FunctionsTypes::T_Body_Kind)                        \
    X(GlobalVariableProperty::T_CS_KIND)                  \
    X(Internal_Form_Datas::T_CallKind)                    \
    X(Internal_Form_Datas::T_Chk_Data_Type)               \
    X(Internal_Form_Datas::T_Info_Category)               \
    X(Results_API_base::Check_Color_Type::T_Check_Color)  \
    X(Technology::Technics::T_Interprocedural_Technology) \
    X(Technology::Technics::T_Loop_Technology)

#define ALL_ENUMERATIONS(X) \
    FIELD_ENUMERATIONS(X)   \
    LONE_ENUMERATIONS(X)
