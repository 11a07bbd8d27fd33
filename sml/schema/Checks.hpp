#pragma once
// What the analyser verified at a program point.

#include <sml/core/declare.hpp>
#include <sml/schema/AccessPath.hpp>
#include <sml/schema/Check_Classification.hpp>
#include <sml/schema/Failure.hpp>
#include <sml/schema/InfosTypes.hpp>
#include <sml/schema/Interrogators.hpp>
#include <sml/schema/Localization.hpp>
#include <sml/schema/Long_Operation.hpp>
#include <sml/schema/PackagedPrettySignature.hpp>
#include <sml/schema/QualifiedPrettyName.hpp>
#include <sml/schema/QualifiedPrettySignature.hpp>
#include <sml/schema/SourceLocRef.hpp>

namespace sml::Checks {

/// The colour of a check.
SML_ENUM(T_Check_Color, DARKORANGE, GRAY, GREEN, ORANGE, RED);

/// How a resource leaks.
SML_ENUM(T_Leak_Kind, LEAK_ASSIGNMENT, LEAK_END_OF_SCOPE);

/// The family of a library function.
SML_ENUM(T_Standard_Lib_Family, STD_LIB_AUTOSAR_COMPLIANCE, STD_LIB_AUTOSAR_IMPL,
         STD_LIB_AUTOSAR_NOIMPL, STD_LIB_AUTOSAR_USE, STD_LIB_EC, STD_LIB_I2C_SMBUS_COMPLIANCE,
         STD_LIB_STANDARD, STD_LIB_VA_ARG);

}  // namespace sml::Checks

namespace sml::Checks::Data_Flow_Kind {

/// The kind of a data-flow finding.
struct T {
    // clang-format off
    using arms = core::Arms<
        core::Arm<"ARRAY_PARTIALLY_READ", std::optional<std::pair<int32, int32>>>,
        core::Arm<"ARRAY_PARTIALLY_WRITTEN", std::optional<std::pair<int32, int32>>>,
        core::Arm<"DOUBLE_WRITE">,
        core::Arm<"NIV">,
        core::Arm<"USELESS_WRITE">>;
    // clang-format on
    SML_VARIANT(T);
};

}  // namespace sml::Checks::Data_Flow_Kind

namespace sml::Checks {

/// What overflowed.
struct T_Ovfl_Data {
    struct Linked_Ovfl_args {
        Strings_T first_string;
        int32     first_int{};

        SML_RECORD(Linked_Ovfl_args, first_string, first_int);
    };
    struct Merged_Ovfl_args {
        int32 first_int{};
        int32 second_int{};

        SML_RECORD(Merged_Ovfl_args, first_int, second_int);
    };
    struct Single_Ovfl_args {
        bool first_flag{};

        SML_RECORD(Single_Ovfl_args, first_flag);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"Linked_Ovfl", Linked_Ovfl_args>,
        core::Arm<"Merged_Ovfl", Merged_Ovfl_args>,
        core::ElseArm<"Single_Ovfl", Single_Ovfl_args>>;
    // clang-format on
    SML_VARIANT(T_Ovfl_Data);
};

/// One faulty call.
struct T_Incorrect_Call {
    struct CALL_RTF_args {
        Strings_T                   first_string;
        QualifiedPrettySignature::T signature;
        Strings_T                   second_string;

        SML_RECORD(CALL_RTF_args, first_string, signature, second_string);
    };
    struct CALL_WNA_args {
        std::optional<int32>        first_optional_int;
        QualifiedPrettySignature::T signature;
        std::optional<int32>        second_optional_int;

        SML_RECORD(CALL_WNA_args, first_optional_int, signature, second_optional_int);
    };
    struct CALL_WTA_args {
        int32                       first_int{};
        Strings_T                   first_string;
        bool                        first_flag{};
        QualifiedPrettySignature::T signature;
        Strings_T                   second_string;

        SML_RECORD(CALL_WTA_args, first_int, first_string, first_flag, signature, second_string);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"CALL_RTF", CALL_RTF_args>,
        core::Arm<"CALL_WNA", CALL_WNA_args>,
        core::ElseArm<"CALL_WTA", CALL_WTA_args>>;
    // clang-format on
    SML_VARIANT(T_Incorrect_Call);
};

/// Which arguments of a library function are valid.
struct T_Valid_Args_Checks_Datas {
    Strings_T                              first_string;
    Strings_T                              second_string;
    std::list<std::pair<Strings_T, int32>> first_named_ints;
    Strings_T                              third_string;
    Strings_T                              fourth_string;
    std::optional<Strings_T>               optional_string;
    std::list<std::pair<Strings_T, int32>> second_named_ints;

    SML_RECORD(T_Valid_Args_Checks_Datas, first_string, second_string, first_named_ints,
               third_string, fourth_string, optional_string, second_named_ints);
};

/// Which kind of check it is, with the data of that kind.
struct T_Check_Category {
    struct ABSOLUTE_ADDRESS_args {
        bool      first_flag{};
        Strings_T first_string;

        SML_RECORD(ABSOLUTE_ADDRESS_args, first_flag, first_string);
    };
    struct ADA_EXCP_args {
        Strings_T first_string;

        SML_RECORD(ADA_EXCP_args, first_string);
    };
    struct ADA_FE_args {
        Strings_T first_string;

        SML_RECORD(ADA_FE_args, first_string);
    };
    struct ASSERT_QUESTION_args {
        std::optional<int32>         first_optional_int;
        bool                         first_flag{};
        Interrogators::T_QuestionRef question;
        std::optional<int32>         second_optional_int;

        SML_RECORD(ASSERT_QUESTION_args, first_optional_int, first_flag, question,
                   second_optional_int);
    };
    struct BF_CHECKER_WITH_PRECOMPUTED_MESSAGE_args {
        Strings_T message;

        SML_RECORD(BF_CHECKER_WITH_PRECOMPUTED_MESSAGE_args, message);
    };
    struct BLOCKING_WHILE_LOCKED_args {
        Long_Operation::T_Long_Op_T operation;

        SML_RECORD(BLOCKING_WHILE_LOCKED_args, operation);
    };
    struct CALL_FPPF_args {
        std::list<T_Incorrect_Call> incorrect_calls;
        bool                        first_flag{};
        bool                        second_flag{};

        SML_RECORD(CALL_FPPF_args, incorrect_calls, first_flag, second_flag);
    };
    struct CALL_IRV_args {
        Strings_T first_string;

        SML_RECORD(CALL_IRV_args, first_string);
    };
    struct CC_args {
        Strings_T first_string;

        SML_RECORD(CC_args, first_string);
    };
    struct CONV_OVFL_args {
        Strings_T                                      first_string;
        Strings_T                                      second_string;
        T_Ovfl_Data                                    ovfl_data;
        std::optional<std::pair<Strings_T, Strings_T>> string_pair;
        Strings_T                                      third_string;

        SML_RECORD(CONV_OVFL_args, first_string, second_string, ovfl_data, string_pair,
                   third_string);
    };
    struct CTR_args {
        std::optional<Strings_T> optional_string;

        SML_RECORD(CTR_args, optional_string);
    };
    struct DATA_FLOW_FINDING_args {
        Data_Flow_Kind::T      kind;
        QualifiedPrettyName::T name;

        SML_RECORD(DATA_FLOW_FINDING_args, kind, name);
    };
    struct DATA_RACE_args {
        bool                                                first_flag{};
        std::list<AccessPath::Selector::T_private_selector> selectors;
        Strings_T                                           first_string;
        SourceLocRef::T_SourceLocRef                        source_ref;

        SML_RECORD(DATA_RACE_args, first_flag, selectors, first_string, source_ref);
    };
    struct DATA_RACE_BIT_FIELDS_args {
        bool                                                first_flag{};
        std::list<AccessPath::Selector::T_private_selector> selectors;
        Strings_T                                           first_string;
        SourceLocRef::T_SourceLocRef                        source_ref;

        SML_RECORD(DATA_RACE_BIT_FIELDS_args, first_flag, selectors, first_string, source_ref);
    };
    struct DATA_RACE_STD_LIB_args {
        Strings_T first_string;

        SML_RECORD(DATA_RACE_STD_LIB_args, first_string);
    };
    struct DESTROY_LOCKED_args {
        std::unordered_set<Strings_T> string_set;
        Strings_T                     first_string;
        PackagedPrettySignature::T    first_signature;
        PackagedPrettySignature::T    second_signature;

        SML_RECORD(DESTROY_LOCKED_args, string_set, first_string, first_signature,
                   second_signature);
    };
    struct DRS_args {
        Strings_T first_string;

        SML_RECORD(DRS_args, first_string);
    };
    struct DV_ASSERT_args {
        int32 first_int{};

        SML_RECORD(DV_ASSERT_args, first_int);
    };
    struct FLOAT_ABSORPTION_args {
        bool      first_flag{};
        Strings_T first_string;

        SML_RECORD(FLOAT_ABSORPTION_args, first_flag, first_string);
    };
    struct FNC_args {
        PackagedPrettySignature::T signature;

        SML_RECORD(FNC_args, signature);
    };
    struct FNR_args {
        PackagedPrettySignature::T signature;

        SML_RECORD(FNR_args, signature);
    };
    struct IDR_args {
        std::optional<Strings_T> first_optional_string;
        std::optional<Strings_T> second_optional_string;

        SML_RECORD(IDR_args, first_optional_string, second_optional_string);
    };
    struct LEAK_args {
        Strings_T   first_string;
        T_Leak_Kind leak_kind{};

        SML_RECORD(LEAK_args, first_string, leak_kind);
    };
    struct NIP_args {
        bool first_flag{};
        bool second_flag{};

        SML_RECORD(NIP_args, first_flag, second_flag);
    };
    struct NIV_args {
        bool      first_flag{};
        Strings_T first_string;

        SML_RECORD(NIV_args, first_flag, first_string);
    };
    struct NIV_STRUCT_args {
        bool first_flag{};

        SML_RECORD(NIV_STRUCT_args, first_flag);
    };
    struct NNR_args {
        std::optional<Strings_T> optional_string;

        SML_RECORD(NNR_args, optional_string);
    };
    struct NON_FINITE_INF_args {
        bool first_flag{};
        bool second_flag{};

        SML_RECORD(NON_FINITE_INF_args, first_flag, second_flag);
    };
    struct NON_FINITE_NAN_args {
        bool first_flag{};

        SML_RECORD(NON_FINITE_NAN_args, first_flag);
    };
    struct NTA_args {
        bool first_flag{};

        SML_RECORD(NTA_args, first_flag);
    };
    struct NTC_args {
        std::optional<std::pair<Strings_T, int32>>        string_and_int;
        PackagedPrettySignature::T                        signature;
        std::optional<std::tuple<Strings_T, int32, bool>> string_int_flag;
        int32                                             first_int{};

        SML_RECORD(NTC_args, string_and_int, signature, string_int_flag, first_int);
    };
    struct NTL_args {
        Strings_T                                         first_string;
        int32                                             first_int{};
        std::optional<std::tuple<Strings_T, int32, bool>> string_int_flag;
        bool                                              first_flag{};

        SML_RECORD(NTL_args, first_string, first_int, string_int_flag, first_flag);
    };
    struct OBAI_args {
        Strings_T first_string;
        int32     first_int{};

        SML_RECORD(OBAI_args, first_string, first_int);
    };
    struct OVFL_args {
        Strings_T                                      first_string;
        bool                                           first_flag{};
        T_Ovfl_Data                                    ovfl_data;
        std::optional<std::pair<Strings_T, Strings_T>> string_pair;
        Strings_T                                      second_string;

        SML_RECORD(OVFL_args, first_string, first_flag, ovfl_data, string_pair, second_string);
    };
    struct PVC_args {
        std::optional<Strings_T> optional_string;

        SML_RECORD(PVC_args, optional_string);
    };
    struct RESOURCE_args {
        QualifiedPrettyName::T name;
        Strings_T              first_string;

        SML_RECORD(RESOURCE_args, name, first_string);
    };
    struct SECURITY_args {
        QualifiedPrettyName::T name;
        Strings_T              first_string;

        SML_RECORD(SECURITY_args, name, first_string);
    };
    struct SHF_args {
        Strings_T first_string;
        int32     first_int{};

        SML_RECORD(SHF_args, first_string, first_int);
    };
    struct STACK_POINTER_args {
        std::list<Strings_T> strings;
        Strings_T            first_string;

        SML_RECORD(STACK_POINTER_args, strings, first_string);
    };
    struct STD_LIB_args {
        std::list<std::pair<Strings_T, int32>>                                named_ints;
        std::list<std::pair<Strings_T, std::list<T_Valid_Args_Checks_Datas>>> valid_args_by_name;
        int32                                                                 first_int{};
        QualifiedPrettySignature::T                                           signature;
        std::list<Strings_T>                                                  strings;
        Strings_T                                                             first_string;
        int32                                                                 second_int{};

        SML_RECORD(STD_LIB_args, named_ints, valid_args_by_name, first_int, signature, strings,
                   first_string, second_int);
    };
    struct SUBNORMAL_args {
        bool first_flag{};
        bool second_flag{};

        SML_RECORD(SUBNORMAL_args, first_flag, second_flag);
    };
    struct THD_args {
        std::optional<Strings_T> first_optional_string;
        std::optional<Strings_T> second_optional_string;

        SML_RECORD(THD_args, first_optional_string, second_optional_string);
    };
    struct THR_args {
        std::optional<Strings_T> optional_string;

        SML_RECORD(THR_args, optional_string);
    };
    struct USER_GLOBAL_ASSERT_args {
        Strings_T first_string;
        Strings_T second_string;

        SML_RECORD(USER_GLOBAL_ASSERT_args, first_string, second_string);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"ABSOLUTE_ADDRESS", ABSOLUTE_ADDRESS_args>,
        core::Arm<"ACER">,
        core::Arm<"ADA_EXCP", ADA_EXCP_args>,
        core::Arm<"ADA_FE", ADA_FE_args>,
        core::Arm<"ADA_POW">,
        core::Arm<"ASSERT">,
        core::Arm<"ASSERT_QUESTION", ASSERT_QUESTION_args>,
        core::Arm<"BAD_FLOAT_OP">,
        core::Arm<"BAD_LOCK">,
        core::Arm<"BAD_UNLOCK">,
        core::Arm<"BF_CHECKER_SILENT">,
        core::Arm<"BF_CHECKER_WITH_PRECOMPUTED_MESSAGE", BF_CHECKER_WITH_PRECOMPUTED_MESSAGE_args>,
        core::Arm<"BLOCKING_WHILE_LOCKED", BLOCKING_WHILE_LOCKED_args>,
        core::Arm<"CALL_FPPF", CALL_FPPF_args>,
        core::Arm<"CALL_IRV", CALL_IRV_args>,
        core::Arm<"CC", CC_args>,
        core::Arm<"CONV_NAN_TO_INT">,
        core::Arm<"CONV_OVFL", CONV_OVFL_args>,
        core::Arm<"CPP_Vor", InfosTypes::T_Info_Statement_Kind>,
        core::Arm<"CTR", CTR_args>,
        core::Arm<"DATA_FLOW_FINDING", DATA_FLOW_FINDING_args>,
        core::Arm<"DATA_RACE", DATA_RACE_args>,
        core::Arm<"DATA_RACE_BIT_FIELDS", DATA_RACE_BIT_FIELDS_args>,
        core::Arm<"DATA_RACE_STD_LIB", DATA_RACE_STD_LIB_args>,
        core::Arm<"DCTp">,
        core::Arm<"DCTr">,
        core::Arm<"DEADLOCK">,
        core::Arm<"DESTROY_LOCKED", DESTROY_LOCKED_args>,
        core::Arm<"DOUBLE_LOCK">,
        core::Arm<"DOUBLE_UNLOCK">,
        core::Arm<"DRS", DRS_args>,
        core::Arm<"DV_ASSERT", DV_ASSERT_args>,
        core::Arm<"EEXU">,
        core::Arm<"EXD">,
        core::Arm<"FAP">,
        core::Arm<"FLOAT_ABSORPTION", FLOAT_ABSORPTION_args>,
        core::Arm<"FNC", FNC_args>,
        core::Arm<"FNR", FNR_args>,
        core::Arm<"FRV">,
        core::Arm<"GLOBAL_SET_AT_INITIALIZATION">,
        core::Arm<"IDP">,
        core::Arm<"IDR", IDR_args>,
        core::Arm<"INIT_EXCEED_ALLOC">,
        core::Arm<"INT_TO_FLOAT_PRECISION_LOSS">,
        core::Arm<"LEAK", LEAK_args>,
        core::Arm<"LSHFP">,
        core::Arm<"NIP", NIP_args>,
        core::Arm<"NIV", NIV_args>,
        core::Arm<"NIV_STRUCT", NIV_STRUCT_args>,
        core::Arm<"NNR", NNR_args>,
        core::Arm<"NON_FINITE_INF", NON_FINITE_INF_args>,
        core::Arm<"NON_FINITE_NAN", NON_FINITE_NAN_args>,
        core::Arm<"NTA", NTA_args>,
        core::Arm<"NTC", NTC_args>,
        core::Arm<"NTL", NTL_args>,
        core::Arm<"NULL">,
        core::Arm<"OBAI", OBAI_args>,
        core::Arm<"OVFL", OVFL_args>,
        core::Arm<"PAS">,
        core::Arm<"PCF">,
        core::Arm<"PLACEMENT_NEW">,
        core::Arm<"PMF">,
        core::Arm<"POSITIVE_VLA">,
        core::Arm<"PVC", PVC_args>,
        core::Arm<"RESOURCE", RESOURCE_args>,
        core::Arm<"SECURITY", SECURITY_args>,
        core::Arm<"SEH">,
        core::Arm<"SHF", SHF_args>,
        core::Arm<"STACK_POINTER", STACK_POINTER_args>,
        core::Arm<"STD_LIB", STD_LIB_args>,
        core::Arm<"SUBNORMAL", SUBNORMAL_args>,
        core::Arm<"THD", THD_args>,
        core::Arm<"THR", THR_args>,
        core::Arm<"TID">,
        core::Arm<"UNR">,
        core::Arm<"USER_GLOBAL_ASSERT", USER_GLOBAL_ASSERT_args>,
        core::Arm<"ZDV">>;
    // clang-format on
    SML_VARIANT(T_Check_Category);
};

/// One verification result.
struct T_A_Check {
    Strings_T                                                     first_string;
    int32                                                         first_int{};
    T_Check_Category                                              category;
    int32                                                         second_int{};
    std::optional<Strings_T>                                      optional_string;
    core::HashedSet<Check_Classification::T_Check_Classification> classifications;
    Strings_T                                                     second_string;
    int32                                                         third_int{};
    int32                                                         fourth_int{};
    bool                                                          first_flag{};
    Strings_T                                                     third_string;
    Strings_T                                                     fourth_string;
    int32                                                         fifth_int{};
    std::map<Localization::T_Localization,
             std::pair<core::HashedSet<QualifiedPrettyName::T>, PackagedPrettySignature::T>>
                                 located_names;
    Strings_T                    fifth_string;
    int32                        sixth_int{};
    bool                         second_flag{};
    int32                        seventh_int{};
    bool                         third_flag{};
    SourceLocRef::T_SourceLocRef source_ref;
    Strings_T                    sixth_string;
    int32                        eighth_int{};
    std::optional<Failure::T>    failure;

    SML_OWN_LIFE(T_A_Check);
    SML_RECORD(T_A_Check, first_string, first_int, category, second_int, optional_string,
               classifications, second_string, third_int, fourth_int, first_flag, third_string,
               fourth_string, fifth_int, located_names, fifth_string, sixth_int, second_flag,
               seventh_int, third_flag, source_ref, sixth_string, eighth_int, failure);
};

}  // namespace sml::Checks
