#pragma once
// Annotations of the intermediate language and their expressions.

#include <sml/core/big_integer.hpp>
#include <sml/core/declare.hpp>
#include <sml/core/ieee754_float.hpp>
#include <sml/schema/IEEE754.hpp>
#include <sml/schema/Long_Operation.hpp>

namespace sml::IL {

/// A relational operator.
SML_ENUM(T_Relational_Binop, Equl, Ge, Gt, Le, Lt, NotEqual);

/// A built-in question about a pointer.
SML_ENUM(T_Pointer_Builtin, Pointer_Invalid, Pointer_Nip_Or_Null, Pointer_Offset,
         Pointer_Points_To_Initialized_Data, Pointer_Size_In_Bytes);

/// A built-in operation on memory.
SML_ENUM(T_Memory_Builtin, Memcpy, Meminit, Memset, Memzero);

/// The kind of a loop.
SML_ENUM(T_Loop_Kind, MODEL_LOOP, REGULAR_LOOP, TRIVIAL_LOOP);

/// The type of an operation.
struct T_Type_Op {
    struct Float_Op_args {
        IEEE754::T format;

        SML_RECORD(Float_Op_args, format);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"Float_Op", Float_Op_args>,
        core::Arm<"Integer_Op">>;
    // clang-format on
    SML_VARIANT(T_Type_Op);
};

/// An expression that an annotation states. Children are boxed.
struct T_Info_Expr {
    // clang-format off
    using arms = core::Arms<
        core::Arm<"Info_Const_Float", zelvanite::IEEE754Float>,
        core::Arm<"Info_Const_Int", BigInteger>,
        core::Arm<"Info_Field", std::pair<core::Box<T_Info_Expr>, Strings_T>>,
        core::Arm<"Info_Pred", std::tuple<T_Relational_Binop, core::Box<T_Info_Expr>, core::Box<T_Info_Expr>>>,
        core::Arm<"Info_Ptr_Builtin", std::pair<T_Pointer_Builtin, core::Box<T_Info_Expr>>>,
        core::Arm<"Info_Var", Strings_T>>;
    // clang-format on
    SML_VARIANT_WITHOUT_COMPARISON(T_Info_Expr);
};

/// What the analyser attaches to a statement.
struct T_Annotation {
    struct Long_Annote_args {
        std::optional<std::pair<Strings_T, int32>> name_and_number;
        Long_Operation::T_Long_Op_T                operation;

        SML_RECORD(Long_Annote_args, name_and_number, operation);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"Event_Annote", std::pair<Strings_T, int32>>,
        core::Arm<"Long_Annote", Long_Annote_args>,
        core::Arm<"Simple_Annote", Strings_T>,
        core::ElseArm<"Valued_Event_Annote", std::tuple<Strings_T, int32, core::Box<T_Info_Expr>>>>;
    // clang-format on
    SML_VARIANT_WITHOUT_COMPARISON(T_Annotation);
};

}  // namespace sml::IL
