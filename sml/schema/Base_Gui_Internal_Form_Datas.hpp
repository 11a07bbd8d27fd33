#pragma once
// The forms of checks and information records that a viewer reads.

#include <sml/core/declare.hpp>
#include <sml/schema/Application_Results.hpp>
#include <sml/schema/Checks.hpp>
#include <sml/schema/GUI_Check_Classification.hpp>
#include <sml/schema/Localization.hpp>
#include <sml/schema/PackagedPrettySignature.hpp>

namespace sml::Base_Gui_Internal_Form_Datas {

/// The caller in whose context a check stands.
struct T_Caller {
    int32                        first_int{};
    PackagedPrettySignature::T   signature;
    bool                         flag{};
    Localization::T_Localization localization;

    SML_RECORD(T_Caller, first_int, signature, flag, localization);
};

/// The clone or call context of a check.
struct T_Chk_Context {
    struct Chk_Clone_args {
        Strings_T            name;
        int32                first_int{};
        std::optional<int32> optional_int;

        SML_RECORD(Chk_Clone_args, name, first_int, optional_int);
    };
    struct Chk_Context_args {
        T_Caller             caller;
        int32                first_int{};
        std::optional<int32> optional_int;

        SML_RECORD(Chk_Context_args, caller, first_int, optional_int);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"Chk_Clone", Chk_Clone_args>,
        core::ElseArm<"Chk_Context", Chk_Context_args>>;
    // clang-format on
    SML_VARIANT(T_Chk_Context);
};

/// An information record in the form that a viewer reads.
struct T_Info_Definition {
    int32                        first_int{};
    std::optional<int32>         first_optional_int;
    int32                        second_int{};
    bool                         flag{};
    Localization::T_Localization localization;
    Strings_T                    name;
    std::optional<int32>         second_optional_int;

    SML_RECORD(T_Info_Definition, first_int, first_optional_int, second_int, flag, localization,
               name, second_optional_int);
};

/// A check in the form that a viewer reads.
struct T_Chk_Data {
    std::optional<int32>                                 first_optional_int;
    std::optional<int32>                                 second_optional_int;
    std::optional<Strings_T>                             first_optional_name;
    GUI_Check_Classification::T_GUI_Check_Classification classification;
    int32                                                first_int{};
    std::list<T_Chk_Context>                             contexts;
    bool                                                 first_flag{};
    int32                                                second_int{};
    std::set<
        std::pair<Localization::T_Localization, std::pair<PackagedPrettySignature::T, Strings_T>>>
                                               signature_locations;
    std::optional<int32>                       third_optional_int;
    std::optional<Strings_T>                   second_optional_name;
    bool                                       second_flag{};
    std::optional<std::pair<Strings_T, int32>> first_numbered_name;
    std::optional<std::pair<Strings_T, int32>> second_numbered_name;
    Localization::T_Localization               localization;
    Strings_T                                  name;
    int32                                      third_int{};
    int32                                      fourth_int{};
    int64                                      word{};
    std::optional<int32>                       fourth_optional_int;
    Checks::T_Check_Category                   category;

    SML_RECORD(T_Chk_Data, first_optional_int, second_optional_int, first_optional_name,
               classification, first_int, contexts, first_flag, second_int, signature_locations,
               third_optional_int, second_optional_name, second_flag, first_numbered_name,
               second_numbered_name, localization, name, third_int, fourth_int, word,
               fourth_optional_int, category);
};

/// A whole result set with the forms that a viewer reads.
struct T_Aggregated_Results {
    Application_Results::T_Application_Results          application_results;
    std::unordered_map<int32, T_Info_Definition>        info_definitions;
    core::HashedMap<std::pair<Strings_T, int32>, int32> kernel_to_gui_info_ids;
    std::list<std::pair<int32, T_Chk_Data>>             check_data;

    SML_RECORD(T_Aggregated_Results, application_results, info_definitions, kernel_to_gui_info_ids,
               check_data);
};

}  // namespace sml::Base_Gui_Internal_Form_Datas
