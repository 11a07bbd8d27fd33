#pragma once
// What the analyser knows beyond checks: values, ranges, calls, concurrency.

#include <sml/core/big_integer.hpp>
#include <sml/core/declare.hpp>
#include <sml/core/ieee754_float.hpp>
#include <sml/schema/IEEE754.hpp>
#include <sml/schema/InfosTypes.hpp>
#include <sml/schema/Interrogators.hpp>
#include <sml/schema/PackagedPrettySignature.hpp>
#include <sml/schema/SourceLocRef.hpp>

namespace sml::Infos {

/// How a call that does not return is made.
SML_ENUM(T_NTC_Kind, NTC_Accept, NTC_Call, NTC_Function_Pointer, NTC_Noreturn_Stub,
         NTC_Pointer_To_Member_Call, NTC_Virtual_Call);

/// One interval of a value range.
struct T_Range {
    struct Int_Interval_parts {
        std::optional<BigInteger> lower;
        std::optional<BigInteger> upper;

        SML_FIELDS(Int_Interval_parts, lower, upper);
    };
    struct Real_Interval_parts {
        zelvanite::IEEE754Float lower;
        zelvanite::IEEE754Float upper;

        SML_FIELDS(Real_Interval_parts, lower, upper);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"Int_Interval", Int_Interval_parts>,
        core::Arm<"Nan">,
        core::ElseArm<"Real_Interval", Real_Interval_parts>>;
    // clang-format on
    SML_VARIANT(T_Range);
};

}  // namespace sml::Infos

namespace sml::Infos::Multiplicity {

/// What is known of the divisibility of values.
struct T {
    // clang-format off
    using arms = core::Arms<
        core::Arm<"Bottom">,
        core::Arm<"FloatMultipleOfTwoPow", std::optional<int32>>,
        core::Arm<"Multiple", BigInteger>,
        core::Arm<"Odd">,
        core::Arm<"Top">>;
    // clang-format on
    SML_VARIANT(T);
};

}  // namespace sml::Infos::Multiplicity

namespace sml::Infos {

/// The values that something can take.
struct T_Value_Range {
    struct Int_Full_Range_args {
        std::optional<BigInteger> lower;
        std::optional<BigInteger> upper;

        SML_RECORD(Int_Full_Range_args, lower, upper);
    };
    struct Real_Full_Range_parts {
        IEEE754::T                                                                 format;
        std::optional<std::pair<zelvanite::IEEE754Float, zelvanite::IEEE754Float>> bounds;
        bool                                                                       flag{};

        // required: compared by `<` alone, in both directions
        static constexpr bool walked_with_less = true;
        SML_FIELDS(Real_Full_Range_parts, format, bounds, flag);
    };
    struct Value_Range_parts {
        std::list<T_Range> intervals;
        Multiplicity::T    multiplicity;

        // required: compared by `<` alone, in both directions
        static constexpr bool walked_with_less = true;
        SML_FIELDS(Value_Range_parts, intervals, multiplicity);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"Int_Full_Range", Int_Full_Range_args>,
        core::Arm<"Real_Full_Range", Real_Full_Range_parts>,
        core::ElseArm<"Value_Range", Value_Range_parts>>;
    // clang-format on
    SML_VARIANT(T_Value_Range);
};

/// The type of a value.
struct T_Info_Type {
    struct Inf_Type_Ada_Fixed_args {
        std::list<int32> first_list;
        double           first_double{};
        double           second_double{};
        bool             flag{};
        std::list<int32> second_list;

        SML_RECORD(Inf_Type_Ada_Fixed_args, first_list, first_double, second_double, flag,
                   second_list);
    };
    struct Inf_Type_Ada_Float_args {
        double first_double{};
        double second_double{};
        int32  first_int{};

        SML_RECORD(Inf_Type_Ada_Float_args, first_double, second_double, first_int);
    };
    struct Inf_Type_DRSFloat_args {
        zelvanite::IEEE754Float first_float;
        zelvanite::IEEE754Float second_float;
        IEEE754::T              format;

        SML_RECORD(Inf_Type_DRSFloat_args, first_float, second_float, format);
    };
    struct Inf_Type_DRSInteger_args {
        BigInteger first_number;
        BigInteger second_number;

        SML_RECORD(Inf_Type_DRSInteger_args, first_number, second_number);
    };
    struct Inf_Type_Float_args {
        IEEE754::T format;

        SML_RECORD(Inf_Type_Float_args, format);
    };
    struct Inf_Type_Integer_args {
        BigInteger                first_number;
        BigInteger                second_number;
        std::optional<BigInteger> third_number;

        SML_RECORD(Inf_Type_Integer_args, first_number, second_number, third_number);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"Inf_Type_Ada_Fixed", Inf_Type_Ada_Fixed_args>,
        core::Arm<"Inf_Type_Ada_Float", Inf_Type_Ada_Float_args>,
        core::Arm<"Inf_Type_DRSFloat", Inf_Type_DRSFloat_args>,
        core::Arm<"Inf_Type_DRSInteger", Inf_Type_DRSInteger_args>,
        core::Arm<"Inf_Type_Float", Inf_Type_Float_args>,
        core::Arm<"Inf_Type_Integer", Inf_Type_Integer_args>,
        core::Arm<"Inf_Type_None">>;
    // clang-format on
    SML_VARIANT(T_Info_Type);
};

/// A value, described by its type and by what it can be.
struct T_Information_Value {
    Strings_T     first_string;
    int32         first_int{};
    T_Info_Type   type;
    T_Value_Range range;

    SML_OWN_LIFE(T_Information_Value);
    SML_RECORD(T_Information_Value, first_string, first_int, type, range);
};

/// What is known of a pointer being null.
struct T_Pointer_Null_Value {
    int32               first_int{};
    T_Information_Value value;

    SML_RECORD(T_Pointer_Null_Value, first_int, value);
};

/// What is known of a field of a structure.
struct T_Field_Information_Kind {
    // clang-format off
    using arms = core::Arms<
        core::Arm<"Field_Pointer", T_Information_Value>,
        core::ElseArm<"Field_Scalar", T_Information_Value>>;
    // clang-format on
    SML_VARIANT(T_Field_Information_Kind);
};

/// The kind of an operator.
struct T_Info_Operator_Kind {
    struct BINARY_OP_args {
        Strings_T first_string;
        Strings_T second_string;

        SML_RECORD(BINARY_OP_args, first_string, second_string);
    };
    struct CONV_args {
        Strings_T first_string;
        bool      flag{};
        Strings_T second_string;

        SML_RECORD(CONV_args, first_string, flag, second_string);
    };
    struct UNARY_OP_args {
        Strings_T first_string;
        Strings_T second_string;

        SML_RECORD(UNARY_OP_args, first_string, second_string);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"BINARY_OP", BINARY_OP_args>,
        core::Arm<"CONV", CONV_args>,
        core::ElseArm<"UNARY_OP", UNARY_OP_args>>;
    // clang-format on
    SML_VARIANT(T_Info_Operator_Kind);
};

}  // namespace sml::Infos

namespace sml::Infos::Concurrency_Info {

/// What a concurrent routine does.
SML_ENUM(T_Routine, Activate, Create);

/// How a concurrent item came to be known.
struct T_Origin {
    struct Spawned_args {
        core::LastWinsUnorderedMap<PackagedPrettySignature::T, int32> spawners;
        bool                                                          flag{};

        SML_RECORD(Spawned_args, spawners, flag);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"Assumed">,
        core::Arm<"Declared">,
        core::Arm<"Manual">,
        core::ElseArm<"Spawned", Spawned_args>>;
    // clang-format on
    SML_VARIANT(T_Origin);
};

/// What is known of a concurrent item or routine.
struct T {
    struct ConcurrentItem_args {
        Strings_T name;
        T_Origin  origin;

        SML_RECORD(ConcurrentItem_args, name, origin);
    };
    struct ConcurrentRoutine_args {
        std::optional<core::LastWinsUnorderedMap<PackagedPrettySignature::T, int32>> spawners;
        T_Routine                                                                    routine{};
        PackagedPrettySignature::T                                                   signature;

        SML_RECORD(ConcurrentRoutine_args, spawners, routine, signature);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"ConcurrentItem", ConcurrentItem_args>,
        core::ElseArm<"ConcurrentRoutine", ConcurrentRoutine_args>>;
    // clang-format on
    SML_VARIANT(T);
};

}  // namespace sml::Infos::Concurrency_Info

namespace sml::Infos::Stack_Escape_Info_Data {

/// Whether data escapes the stack.
SML_ENUM(T_Stack_Escape_Info, May_Escape, No_Escape, Not_Computed, Surely_Out_Of_Stack);

/// Stack escape data: the state of each string's data and a flag.
using Stack_Escape_Map = std::pair<core::LastWinsMap<Strings_T, T_Stack_Escape_Info>, bool>;

}  // namespace sml::Infos::Stack_Escape_Info_Data

namespace sml::Infos {

/// What an information record says.
struct T_Information_Category {
    struct IPT_args {
        InfosTypes::T_Variable_Name variable;
        T_Information_Value         value;

        SML_RECORD(IPT_args, variable, value);
    };
    struct QUESTION_IPT_args {
        std::optional<int32>         first_int;
        T_Information_Value          value;
        Interrogators::T_QuestionRef question;
        std::optional<int32>         second_int;

        SML_RECORD(QUESTION_IPT_args, first_int, value, question, second_int);
    };
    struct RELATION_args {
        std::list<InfosTypes::T_Variable_Name> variables;
        Strings_T                              first_string;
        int32                                  first_int{};
        Strings_T                              second_string;

        SML_RECORD(RELATION_args, variables, first_string, first_int, second_string);
    };
    struct TOOLTIP_INFO_args {
        Strings_T tooltip;

        SML_RECORD(TOOLTIP_INFO_args, tooltip);
    };
    struct VAI_args {
        T_Information_Value  value;
        std::optional<int32> first_int;

        SML_RECORD(VAI_args, value, first_int);
    };
    struct VCS_args {
        Strings_T           first_string;
        Strings_T           second_string;
        T_Information_Value value;

        SML_RECORD(VCS_args, first_string, second_string, value);
    };
    struct VNTC_args {
        std::optional<std::pair<Strings_T, int32>> string_and_int;
        PackagedPrettySignature::T                 signature;
        T_NTC_Kind                                 ntc_kind{};

        SML_RECORD(VNTC_args, string_and_int, signature, ntc_kind);
    };
    struct VNTL_args {
        std::optional<std::pair<Strings_T, int32>> string_and_int;
        bool                                       flag{};

        SML_RECORD(VNTL_args, string_and_int, flag);
    };
    struct VOL_args {
        bool                flag{};
        T_Information_Value first_value;
        T_Information_Value second_value;

        SML_RECORD(VOL_args, flag, first_value, second_value);
    };
    struct VOO_args {
        T_Info_Operator_Kind                        operator_kind;
        std::optional<T_Information_Value>          optional_value;
        InfosTypes::T_Operation_Computation_Mode    computation_mode{};
        std::optional<InfosTypes::Relation_Info::T> relation;
        T_Information_Value                         first_value;
        T_Information_Value                         second_value;

        SML_RECORD(VOO_args, operator_kind, optional_value, computation_mode, relation, first_value,
                   second_value);
    };
    struct VOR_args {
        InfosTypes::T_Info_Statement_Kind statement_kind;
        std::optional<Strings_T>          first_string;
        T_Information_Value               value;

        SML_RECORD(VOR_args, statement_kind, first_string, value);
    };
    struct VORP_args {
        T_Information_Value                                     first_value;
        T_Information_Value                                     second_value;
        T_Pointer_Null_Value                                    null_value;
        InfosTypes::T_Info_Statement_Kind                       statement_kind;
        int32                                                   first_int{};
        T_Information_Value                                     third_value;
        std::optional<Stack_Escape_Info_Data::Stack_Escape_Map> escape_info;
        std::optional<Strings_T>                                first_string;
        BigInteger                                              big_number;

        SML_RECORD(VORP_args, first_value, second_value, null_value, statement_kind, first_int,
                   third_value, escape_info, first_string, big_number);
    };
    struct VORPF_args {
        T_Information_Value                                     value;
        T_Pointer_Null_Value                                    null_value;
        InfosTypes::T_Info_Statement_Kind                       statement_kind;
        std::optional<Stack_Escape_Info_Data::Stack_Escape_Map> first_escape_info;
        std::optional<Stack_Escape_Info_Data::Stack_Escape_Map> second_escape_info;
        std::optional<Strings_T>                                first_string;

        SML_RECORD(VORPF_args, value, null_value, statement_kind, first_escape_info,
                   second_escape_info, first_string);
    };
    struct VORS_args {
        core::LastWinsMap<Strings_T, std::pair<int32, T_Field_Information_Kind>> fields;
        bool                                                                     flag{};
        InfosTypes::T_Info_Statement_Kind                                        statement_kind;

        SML_RECORD(VORS_args, fields, flag, statement_kind);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"IPT", IPT_args>,
        core::Arm<"QUESTION_IPT", QUESTION_IPT_args>,
        core::Arm<"RELATION", RELATION_args>,
        core::Arm<"TOOLTIP_INFO", TOOLTIP_INFO_args>,
        core::Arm<"VAI", VAI_args>,
        core::Arm<"VCC", Concurrency_Info::T>,
        core::Arm<"VCS", VCS_args>,
        core::Arm<"VNTC", VNTC_args>,
        core::Arm<"VNTL", VNTL_args>,
        core::Arm<"VOBJ", InfosTypes::T_Info_Statement_Kind>,
        core::Arm<"VOBJFE", InfosTypes::T_Info_Statement_Kind>,
        core::Arm<"VOL", VOL_args>,
        core::Arm<"VOO", VOO_args>,
        core::Arm<"VOR", VOR_args>,
        core::Arm<"VORP", VORP_args>,
        core::Arm<"VORPF", VORPF_args>,
        core::ElseArm<"VORS", VORS_args>>;
    // clang-format on
    SML_VARIANT(T_Information_Category);
};

/// One statement of the analyser about a program point that is not a check.
struct T_An_Info {
    Strings_T                                  first_string;
    int32                                      first_int{};
    T_Information_Category                     category;
    Strings_T                                  second_string;
    int32                                      second_int{};
    std::optional<std::pair<Strings_T, int32>> string_and_int;
    Strings_T                                  third_string;
    int32                                      third_int{};
    bool                                       flag{};
    SourceLocRef::T_SourceLocRef               location;
    Strings_T                                  fourth_string;
    int32                                      fourth_int{};

    SML_OWN_LIFE(T_An_Info);
    SML_RECORD(T_An_Info, first_string, first_int, category, second_string, second_int,
               string_and_int, third_string, third_int, flag, location, fourth_string, fourth_int);
};

}  // namespace sml::Infos
