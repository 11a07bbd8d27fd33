#pragma once
// Kinds of statements, operators and variables that other records speak of.

#include <sml/core/declare.hpp>
#include <sml/schema/PackagedPrettySignature.hpp>
#include <sml/schema/QualifiedPrettyName.hpp>
#include <sml/schema/QualifiedPrettySignature.hpp>

namespace sml::InfosTypes {

/// The scope of a variable.
SML_ENUM(T_Scope, EXTERN, GLOBAL, INTERNAL, LOCAL, PARAMETER, STATIC);

/// What the parameter of a library function is.
SML_ENUM(T_Stdlib_Param_Kind, STDLIB_PARAM_POINTER_ALLOCATION, STDLIB_PARAM_POINTER_NULL,
         STDLIB_PARAM_POINTER_NULL_AND_ALLOCATION, STDLIB_PARAM_VALUE, STDLIB_PARAM_VA_ARG);

/// How an operation computes.
SML_ENUM(T_Operation_Computation_Mode, NORMAL_MODE, NO_CHECK_WRAP_AROUND_MODE, TRUNCATED_MODE,
         WRAP_AROUND_MODE);

/// What a value stands in.
struct T_Variable_Name {
    struct VARIABLE_parts {
        QualifiedPrettyName::T name;
        T_Scope                scope{};
        bool                   flag{};

        SML_FIELDS(VARIABLE_parts, name, scope, flag);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"ARRAY_CELL", int32>,
        core::Arm<"DEREFERENCED_VALUE">,
        core::Arm<"INTERNAL_VARIABLE", Strings_T>,
        core::Arm<"OTHER">,
        core::Arm<"STRUCT_FIELD", int32>,
        core::ElseArm<"VARIABLE", VARIABLE_parts>>;
    // clang-format on
    SML_VARIANT(T_Variable_Name);
};

/// The kind of a statement.
struct T_Info_Statement_Kind {
    struct CONSTRUCTION_VIRTUAL_CALL_args {
        Strings_T first_string;
        Strings_T second_string;

        SML_RECORD(CONSTRUCTION_VIRTUAL_CALL_args, first_string, second_string);
    };
    struct DESTRUCTION_VIRTUAL_CALL_args {
        Strings_T first_string;
        Strings_T second_string;

        SML_RECORD(DESTRUCTION_VIRTUAL_CALL_args, first_string, second_string);
    };
    struct DISPATCH_VIRTUAL_CALL_args {
        Strings_T first_string;
        Strings_T second_string;

        SML_RECORD(DISPATCH_VIRTUAL_CALL_args, first_string, second_string);
    };
    struct STDLIB_PARAM_args {
        T_Stdlib_Param_Kind      param_kind{};
        std::optional<Strings_T> first_string;

        SML_RECORD(STDLIB_PARAM_args, param_kind, first_string);
    };
    struct STUB_OF_VIRTUAL_CALL_args {
        Strings_T first_string;

        SML_RECORD(STUB_OF_VIRTUAL_CALL_args, first_string);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"ASSIGN", T_Variable_Name>,
        core::Arm<"CALL_RETURN", QualifiedPrettySignature::T>,
        core::Arm<"CALL_THROW", std::optional<Strings_T>>,
        core::Arm<"CONSTRUCTION_VIRTUAL_CALL", CONSTRUCTION_VIRTUAL_CALL_args>,
        core::Arm<"DEREF_ASSIGN", T_Variable_Name>,
        core::Arm<"DEREF_READ", T_Variable_Name>,
        core::Arm<"DESTRUCTION_VIRTUAL_CALL", DESTRUCTION_VIRTUAL_CALL_args>,
        core::Arm<"DISPATCH_VIRTUAL_CALL", DISPATCH_VIRTUAL_CALL_args>,
        core::Arm<"FUNCTION_THROW">,
        core::Arm<"F_CALL">,
        core::Arm<"F_PARAM", QualifiedPrettyName::T>,
        core::Arm<"F_RETURN">,
        core::Arm<"IMPLICIT_CALL", Strings_T>,
        core::Arm<"NO_OBJECT_FOR_CLASS_OR_DERIVED", Strings_T>,
        core::Arm<"POINTER_MEMBER_CALL", Strings_T>,
        core::Arm<"READ", T_Variable_Name>,
        core::Arm<"RETURN">,
        core::Arm<"STDLIB_PARAM", STDLIB_PARAM_args>,
        core::Arm<"STUB_ADDED_TO_PREVENT_RECURSION">,
        core::Arm<"STUB_OF_VIRTUAL_CALL", STUB_OF_VIRTUAL_CALL_args>,
        core::ElseArm<"USERDEF_INSPECTION_POINT", T_Variable_Name>>;
    // clang-format on
    SML_VARIANT(T_Info_Statement_Kind);
};

}  // namespace sml::InfosTypes

namespace sml::InfosTypes::Relation_Info {

/// How two variables relate around an operator.
struct T {
    Strings_T       first_string;
    int32           first_int{};
    T_Variable_Name first_variable;
    T_Variable_Name second_variable;
    Strings_T       second_string;

    SML_RECORD(T, first_string, first_int, first_variable, second_variable, second_string);
};

}  // namespace sml::InfosTypes::Relation_Info
