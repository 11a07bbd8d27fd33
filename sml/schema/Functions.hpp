#pragma once
// Analysed functions and the contexts of their analysis.

#include <sml/core/declare.hpp>
#include <sml/schema/PackagedPrettySignature.hpp>
#include <sml/schema/SourceLocRef.hpp>

namespace sml::Functions::Cxx_Clone_Context {

/// The context in which a function was cloned.
struct T {
    struct During_Constr_Destr_args {
        bool                     first_flag{};
        bool                     second_flag{};
        std::optional<Strings_T> optional_name;
        Strings_T                name;

        SML_RECORD(During_Constr_Destr_args, first_flag, second_flag, optional_name, name);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"During_Constr_Destr", During_Constr_Destr_args>,
        core::Arm<"Specialized", Strings_T>,
        core::Arm<"Sub_Ctor", Strings_T>,
        core::Arm<"Sub_Dtor", Strings_T>,
        core::Arm<"Top_Ctor">,
        core::Arm<"Top_Dtor">>;
    // clang-format on
    SML_VARIANT(T);
};

}  // namespace sml::Functions::Cxx_Clone_Context

namespace sml::Functions {

/// A context in which a function was analysed.
struct T_Function_Context {
    SourceLocRef::T_SourceLocRef location;
    Strings_T                    first_name;
    Strings_T                    second_name;

    SML_RECORD(T_Function_Context, location, first_name, second_name);
};

/// The context of a function, if it has one.
struct T_Function_Context_Option {
    // clang-format off
    using arms = core::Arms<
        core::Arm<"No_Function_Context">,
        core::Arm<"Some_Clone_Context", std::pair<Strings_T, Cxx_Clone_Context::T>>,
        core::ElseArm<"Some_Function_Context", T_Function_Context>>;
    // clang-format on
    SML_VARIANT(T_Function_Context_Option);
};

/// An analysed function.
struct T_A_Function {
    std::set<std::pair<Strings_T, int32>>       first_key_set;
    int32                                       first_int{};
    std::unordered_map<Strings_T, int32>        numbers;
    T_Function_Context_Option                   context;
    std::optional<SourceLocRef::T_SourceLocRef> optional_location;
    std::set<std::pair<Strings_T, int32>>       second_key_set;
    bool                                        first_flag{};
    SourceLocRef::T_SourceLocRef                location;
    PackagedPrettySignature::T                  signature;
    bool                                        second_flag{};

    SML_RECORD(T_A_Function, first_key_set, first_int, numbers, context, optional_location,
               second_key_set, first_flag, location, signature, second_flag);
};

}  // namespace sml::Functions
