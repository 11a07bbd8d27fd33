#pragma once
// The events that explain checks.

#include <sml/core/declare.hpp>
#include <sml/schema/AccessProtections.hpp>
#include <sml/schema/BlockKind.hpp>
#include <sml/schema/Data_Table_Access.hpp>
#include <sml/schema/Infos.hpp>
#include <sml/schema/InfosTypes.hpp>
#include <sml/schema/Localization.hpp>
#include <sml/schema/PackagedPrettySignature.hpp>
#include <sml/schema/QualifiedPrettyName.hpp>
#include <sml/schema/QualifiedPrettySignature.hpp>
#include <sml/schema/SignaturePrefixedQualifiedPrettyName.hpp>
#include <sml/schema/SourceLocRef.hpp>

namespace sml::Events {

/// How shared data is accessed.
SML_ENUM(T_DataRaceAccessType, DR_CALL, DR_READ, DR_WRITE);

/// One side of a race.
struct T_RaceConditionAccess {
    std::list<std::tuple<PackagedPrettySignature::T, Localization::T_Localization,
                         std::optional<core::HashedSet<AccessProtections::T_AccessProtections>>>>
                                                            accesses;
    core::HashedSet<AccessProtections::T_AccessProtections> protections;
    Data_Table_Access::T                                    data_access;

    SML_OWN_LIFE(T_RaceConditionAccess);
    SML_RECORD(T_RaceConditionAccess, accesses, protections, data_access);
};

/// Why the analyser lost precision.
struct T_Imprecision_Event_Kind {
    // clang-format off
    using arms = core::Arms<
        core::Arm<"IE_ALIAS_IMPRECISION">,
        core::Arm<"IE_ALIAS_READ_BAD_TYPE">,
        core::Arm<"IE_CONVERSION_POINTER_TO_INT">,
        core::Arm<"IE_DVO_RANDOM">,
        core::Arm<"IE_FLOAT_CONSTANT_OVERFLOW">,
        core::Arm<"IE_IMPLICIT_CALL_CONVERSION">,
        core::Arm<"IE_INTERNAL_STUB", Strings_T>,
        core::Arm<"IE_INVALID_POINTER">,
        core::Arm<"IE_LOGICAL_RIGHT_SHIFT">,
        core::Arm<"IE_LWTM">,
        core::Arm<"IE_OPERATION_GENERATING_FULL_RANGE", Strings_T>,
        core::Arm<"IE_POINTER_ARITHMETIC">,
        core::Arm<"IE_POINTER_CONVERSION">,
        core::Arm<"IE_POINTER_DIFFERENCE">,
        core::Arm<"IE_POINTER_TO_VOLATILE">,
        core::Arm<"IE_RECURSIVE_STRUCTURE">,
        core::Arm<"IE_STD_LIB", QualifiedPrettySignature::T>,
        core::Arm<"IE_UNKNOWN_HIGH_ORDER_CALL", Strings_T>,
        core::Arm<"IE_VOID_STAR">>;
    // clang-format on
    SML_VARIANT(T_Imprecision_Event_Kind);
};

/// What an event was. One kind can contain another.
struct T_Event_Kind {
    struct ARGUMENT_OF_CALL_EVENT_args {
        int32                       first_int{};
        QualifiedPrettySignature::T signature;
        QualifiedPrettyName::T      name;

        SML_RECORD(ARGUMENT_OF_CALL_EVENT_args, first_int, signature, name);
    };
    struct CONTROL_FLOW_POINT_args {
        Strings_T                     first_string;
        int32                         first_int{};
        BlockKind::T_ControlFlowPoint point;

        SML_RECORD(CONTROL_FLOW_POINT_args, first_string, first_int, point);
    };
    struct CRITICAL_SECTION_EVENT_args {
        int32                                 first_int{};
        bool                                  first_flag{};
        Strings_T                             first_string;
        int32                                 second_int{};
        std::list<PackagedPrettySignature::T> signatures;

        SML_RECORD(CRITICAL_SECTION_EVENT_args, first_int, first_flag, first_string, second_int,
                   signatures);
    };
    struct DATA_RACE_ACCESS_EVENT_args {
        T_DataRaceAccessType access_type{};
        Strings_T            first_string;
        std::list<Strings_T> first_strings;
        std::list<Strings_T> second_strings;
        Strings_T            second_string;

        SML_RECORD(DATA_RACE_ACCESS_EVENT_args, access_type, first_string, first_strings,
                   second_strings, second_string);
    };
    struct INPUT_EXTERN_args {
        bool                                    first_flag{};
        std::optional<Infos::T_Range>           range;
        SignaturePrefixedQualifiedPrettyName::T name;

        SML_RECORD(INPUT_EXTERN_args, first_flag, range, name);
    };
    struct INPUT_MAIN_GENERATOR_CALL_args {
        QualifiedPrettyName::T        name;
        int32                         first_int{};
        QualifiedPrettySignature::T   signature;
        bool                          first_flag{};
        std::optional<Infos::T_Range> range;

        SML_RECORD(INPUT_MAIN_GENERATOR_CALL_args, name, first_int, signature, first_flag, range);
    };
    struct INPUT_MAIN_GENERATOR_INIT_args {
        bool                                    first_flag{};
        std::optional<Infos::T_Range>           range;
        SignaturePrefixedQualifiedPrettyName::T name;

        SML_RECORD(INPUT_MAIN_GENERATOR_INIT_args, first_flag, range, name);
    };
    struct INPUT_MAIN_GENERATOR_PERMANENT_args {
        Infos::T_Range                          range;
        SignaturePrefixedQualifiedPrettyName::T name;

        SML_RECORD(INPUT_MAIN_GENERATOR_PERMANENT_args, range, name);
    };
    struct INPUT_STUB_CALL_args {
        QualifiedPrettySignature::T   signature;
        bool                          first_flag{};
        std::optional<Infos::T_Range> range;

        SML_RECORD(INPUT_STUB_CALL_args, signature, first_flag, range);
    };
    struct INPUT_VOLATILE_args {
        bool                   first_flag{};
        bool                   second_flag{};
        QualifiedPrettyName::T name;

        SML_RECORD(INPUT_VOLATILE_args, first_flag, second_flag, name);
    };
    struct RACE_CONDITION_EVENT_args {
        Strings_T             first_string;
        int32                 first_int{};
        T_RaceConditionAccess first_access;
        bool                  first_flag{};
        T_RaceConditionAccess second_access;

        SML_RECORD(RACE_CONDITION_EVENT_args, first_string, first_int, first_access, first_flag,
                   second_access);
    };
    struct RUNTIME_ERROR_args {
        Strings_T first_string;
        Strings_T second_string;
        int32     first_int{};

        SML_RECORD(RUNTIME_ERROR_args, first_string, second_string, first_int);
    };
    struct SECURITY_EVENT_args {
        std::optional<core::Box<T_Event_Kind>> nested_kind;
        Strings_T                              first_string;

        SML_RECORD(SECURITY_EVENT_args, nested_kind, first_string);
    };
    struct SHRINK_CAST_args {
        Strings_T first_string;
        Strings_T second_string;
        Strings_T third_string;

        SML_RECORD(SHRINK_CAST_args, first_string, second_string, third_string);
    };
    struct VARIABLE_ACCESS_EVENT_args {
        bool                                    first_flag{};
        bool                                    second_flag{};
        SignaturePrefixedQualifiedPrettyName::T name;

        SML_RECORD(VARIABLE_ACCESS_EVENT_args, first_flag, second_flag, name);
    };
    struct VARIABLE_TASK_ACCESS_EVENT_args {
        Strings_T first_string;
        Strings_T second_string;
        Strings_T third_string;

        SML_RECORD(VARIABLE_TASK_ACCESS_EVENT_args, first_string, second_string, third_string);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"ADDRESS_OF_VARIABLE_EVENT", QualifiedPrettyName::T>,
        core::Arm<"ARGUMENT_OF_CALL_EVENT", ARGUMENT_OF_CALL_EVENT_args>,
        core::Arm<"ASSIGNMENT_EVENT", InfosTypes::T_Variable_Name>,
        core::Arm<"CONSTRAIN_EVENT", Strings_T>,
        core::Arm<"CONTROL_FLOW_POINT", CONTROL_FLOW_POINT_args>,
        core::Arm<"CRITICAL_SECTION_EVENT", CRITICAL_SECTION_EVENT_args>,
        core::Arm<"DATA_RACE_ACCESS_EVENT", DATA_RACE_ACCESS_EVENT_args>,
        core::Arm<"DEFECT_EVENT">,
        core::Arm<"FREE_EVENT", QualifiedPrettySignature::T>,
        core::Arm<"IMPRECISION_EVENT", T_Imprecision_Event_Kind>,
        core::Arm<"INPUT_ABSOLUTE_ADDRESS">,
        core::Arm<"INPUT_EXTERN", INPUT_EXTERN_args>,
        core::Arm<"INPUT_MAIN_GENERATOR_CALL", INPUT_MAIN_GENERATOR_CALL_args>,
        core::Arm<"INPUT_MAIN_GENERATOR_INIT", INPUT_MAIN_GENERATOR_INIT_args>,
        core::Arm<"INPUT_MAIN_GENERATOR_PERMANENT", INPUT_MAIN_GENERATOR_PERMANENT_args>,
        core::Arm<"INPUT_STUB_CALL", INPUT_STUB_CALL_args>,
        core::Arm<"INPUT_VOLATILE", INPUT_VOLATILE_args>,
        core::Arm<"MALLOC_EVENT", Strings_T>,
        core::Arm<"RACE_CONDITION_EVENT", RACE_CONDITION_EVENT_args>,
        core::Arm<"RETURN_EVENT", QualifiedPrettySignature::T>,
        core::Arm<"RUNTIME_ERROR", RUNTIME_ERROR_args>,
        core::Arm<"SCALAR_LOCAL_NIV">,
        core::Arm<"SECURITY_EVENT", SECURITY_EVENT_args>,
        core::Arm<"SHRINK_CAST", SHRINK_CAST_args>,
        core::Arm<"STD_LIB_EVENT", Strings_T>,
        core::Arm<"THROW">,
        core::Arm<"VARIABLE_ACCESS_EVENT", VARIABLE_ACCESS_EVENT_args>,
        core::Arm<"VARIABLE_DECLARATION_EVENT", QualifiedPrettyName::T>,
        core::ElseArm<"VARIABLE_TASK_ACCESS_EVENT", VARIABLE_TASK_ACCESS_EVENT_args>>;
    // clang-format on
    SML_VARIANT(T_Event_Kind);
};

/// One step in the explanation of a check.
struct T_An_Event {
    std::optional<Strings_T>     optional_string;
    bool                         first_flag{};
    PackagedPrettySignature::T   signature;
    bool                         second_flag{};
    Strings_T                    first_string;
    int32                        first_int{};
    core::Box<T_Event_Kind>      kind;
    SourceLocRef::T_SourceLocRef source_ref;

    SML_OWN_LIFE(T_An_Event);
    SML_RECORD(T_An_Event, optional_string, first_flag, signature, second_flag, first_string,
               first_int, kind, source_ref);
};

}  // namespace sml::Events
