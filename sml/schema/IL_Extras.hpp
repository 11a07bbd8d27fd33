#pragma once
// Data on nodes of the intermediate language.

#include <sml/core/declare.hpp>
#include <sml/schema/Application_Results.hpp>
#include <sml/schema/Checks.hpp>
#include <sml/schema/Events.hpp>
#include <sml/schema/Functions.hpp>
#include <sml/schema/IEEE754.hpp>
#include <sml/schema/IL.hpp>
#include <sml/schema/IL_Attribute.hpp>
#include <sml/schema/Interrogators.hpp>
#include <sml/schema/Mem_Alloc_BuiltIn_Operation.hpp>
#include <sml/schema/Variable_Value.hpp>

namespace sml::IL_Extras::ExprExtraData {

/// A check category on an expression.
struct T {
    Checks::T_Check_Category category;
    int32                    first_int{};

    SML_RECORD(T, category, first_int);
};

}  // namespace sml::IL_Extras::ExprExtraData

namespace sml::IL_Extras::VVIRZelvanitePragmasTag {

/// One parameter of a pragma. The words are opaque outside the writer's process.
struct T_PragmaParameter {
    struct SOURCE_LOC_PRAGMA_PARAMETER_args {
        uint32 first_number{};
        uint64 word{};
        uint32 second_number{};

        SML_RECORD(SOURCE_LOC_PRAGMA_PARAMETER_args, first_number, word, second_number);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"BOOL_PRAGMA_PARAMETER", bool>,
        core::Arm<"INT_PRAGMA_PARAMETER", int32>,
        core::Arm<"OBJ_PRAGMA_PARAMETER", uint64>,
        core::Arm<"PATH_PRAGMA_PARAMETER", uint64>,
        core::Arm<"SOURCE_LOC_PRAGMA_PARAMETER", SOURCE_LOC_PRAGMA_PARAMETER_args>,
        core::ElseArm<"STRING_PRAGMA_PARAMETER", uint64>>;
    // clang-format on
    SML_VARIANT_WITHOUT_COMPARISON(T_PragmaParameter);
};

}  // namespace sml::IL_Extras::VVIRZelvanitePragmasTag

namespace sml::IL_Extras {

/// What the analyser hangs on a node of its intermediate language.
struct T_ZelvaniteResultData {
    struct __unnamed_record_1 {
        Strings_T                                  name;
        std::optional<std::pair<Strings_T, int32>> numbered_name;

        SML_RECORD(__unnamed_record_1, name, numbered_name);
    };
    struct __unnamed_record_2 {
        Strings_T                                  first_name;
        Strings_T                                  second_name;
        std::optional<std::pair<Strings_T, int32>> numbered_name;

        SML_RECORD(__unnamed_record_2, first_name, second_name, numbered_name);
    };
    struct __unnamed_record_3 {
        Strings_T                                  name;
        std::optional<std::pair<Strings_T, int32>> numbered_name;
        int32                                      first_int{};

        SML_RECORD(__unnamed_record_3, name, numbered_name, first_int);
    };
    struct __unnamed_record_4 {
        Strings_T                                  first_name;
        Strings_T                                  second_name;
        std::optional<std::pair<Strings_T, int32>> numbered_name;

        SML_RECORD(__unnamed_record_4, first_name, second_name, numbered_name);
    };
    struct ATTRIBUTE_COPY_ALL_EXCEPT_args {
        std::list<Strings_T>                       excepted;
        std::optional<std::pair<Strings_T, int32>> numbered_name;

        SML_RECORD(ATTRIBUTE_COPY_ALL_EXCEPT_args, excepted, numbered_name);
    };
    struct Attribute_Pred_args {
        Strings_T                 name;
        std::unordered_set<int32> values;

        SML_RECORD(Attribute_Pred_args, name, values);
    };
    struct Call_args {
        std::optional<std::map<std::pair<Strings_T, int32>, std::pair<Strings_T, int32>>> mapping;
        std::optional<std::pair<Strings_T, int32>> numbered_name;

        SML_RECORD(Call_args, mapping, numbered_name);
    };
    struct Event_args {
        std::optional<core::Box<Events::T_Event_Kind>> event;

        SML_RECORD(Event_args, event);
    };
    struct FLOAT_MODEL_ROUND_args {
        bool       flag{};
        IEEE754::T float_model;

        SML_RECORD(FLOAT_MODEL_ROUND_args, flag, float_model);
    };
    struct Inspection_Point_IPT_args {
        Strings_T     name;
        int32         first_int{};
        IL::T_Type_Op type_op;

        SML_RECORD(Inspection_Point_IPT_args, name, first_int, type_op);
    };
    struct Inspection_Point_Points_To_args {
        bool      flag{};
        Strings_T name;
        int32     first_int{};

        SML_RECORD(Inspection_Point_Points_To_args, flag, name, first_int);
    };
    struct Loop_Until_args {
        std::optional<std::pair<Strings_T, int32>> numbered_name;
        std::optional<std::pair<std::pair<Strings_T, int32>, std::pair<Strings_T, int32>>>
                        name_pair;
        IL::T_Loop_Kind loop_kind{};

        SML_RECORD(Loop_Until_args, numbered_name, name_pair, loop_kind);
    };
    struct MEM_ALLOC_args {
        bool                                     flag{};
        Mem_Alloc_BuiltIn_Operation::T_Operation operation;
        Strings_T                                name;

        SML_RECORD(MEM_ALLOC_args, flag, operation, name);
    };
    struct Marker_args {
        Strings_T first_name;
        Strings_T second_name;

        SML_RECORD(Marker_args, first_name, second_name);
    };
    struct Procedure_Declaration_args {
        std::optional<std::string> text;
        std::array<bool, 4>        flags{};
        int32                      first_int{};

        SML_RECORD(Procedure_Declaration_args, text, flags, first_int);
    };
    struct Program_args {
        std::optional<Application_Results::T_Application_Results> results;
        std::unordered_map<Strings_T, IL_Attribute::T>            attributes;
        std::map<Strings_T, std::map<Strings_T, std::pair<std::pair<int32, bool>, Strings_T>>>
            tables;

        SML_RECORD(Program_args, results, attributes, tables);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"ATTRIBUTE_COPY", std::list<__unnamed_record_1>>,
        core::Arm<"ATTRIBUTE_COPY_ALL_EXCEPT", ATTRIBUTE_COPY_ALL_EXCEPT_args>,
        core::Arm<"ATTRIBUTE_MODIFY", std::list<__unnamed_record_2>>,
        core::Arm<"ATTRIBUTE_START", std::list<__unnamed_record_3>>,
        core::Arm<"Annotated_Command", std::list<IL::T_Annotation>>,
        core::Arm<"Assert", std::pair<Strings_T, int32>>,
        core::Arm<"Attribute_Pred", Attribute_Pred_args>,
        core::Arm<"Call", Call_args>,
        core::Arm<"Clone", std::pair<Strings_T, Functions::Cxx_Clone_Context::T>>,
        core::Arm<"Environment_Modify_Attribute", std::list<__unnamed_record_4>>,
        core::Arm<"Event", Event_args>,
        core::Arm<"ExtraExprData", ExprExtraData::T>,
        core::Arm<"FLOAT_MODEL_ROUND", FLOAT_MODEL_ROUND_args>,
        core::Arm<"Inspection_Point_IPT", Inspection_Point_IPT_args>,
        core::Arm<"Inspection_Point_Points_To", Inspection_Point_Points_To_args>,
        core::Arm<"Inspection_Point_UNR", std::pair<Strings_T, int32>>,
        core::Arm<"Loop_Until", Loop_Until_args>,
        core::Arm<"MEMORY_BUILTIN", IL::T_Memory_Builtin>,
        core::Arm<"MEM_ALLOC", MEM_ALLOC_args>,
        core::Arm<"Marker", Marker_args>,
        core::Arm<"No_Data">,
        core::Arm<"POINTER_BUILTIN", IL::T_Pointer_Builtin>,
        core::Arm<"Procedure_Declaration", Procedure_Declaration_args>,
        core::Arm<"Program", Program_args>,
        core::Arm<"QuestionRef", Interrogators::T_QuestionRef>,
        core::ElseArm<"Variable_Value_Scalar", Variable_Value::T_Init_Mode>>;
    // clang-format on
    SML_VARIANT_WITHOUT_COMPARISON(T_ZelvaniteResultData);
};

}  // namespace sml::IL_Extras
