#pragma once
// Attributes of a program in the intermediate language.

#include <sml/core/big_integer.hpp>
#include <sml/core/declare.hpp>

namespace sml::IL_Attribute {

/// The kind of an attribute.
struct T_Kind {
    struct NUMERICAL_ATTRIBUTE_args {
        std::optional<BigInteger> lower;
        std::optional<BigInteger> upper;

        SML_RECORD(NUMERICAL_ATTRIBUTE_args, lower, upper);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"CONJUNCTION_ATTRIBUTE">,
        core::Arm<"NUMERICAL_ATTRIBUTE", NUMERICAL_ATTRIBUTE_args>,
        core::Arm<"SIMPLE_ATTRIBUTE">>;
    // clang-format on
    SML_VARIANT(T_Kind);
};

/// An attribute of a program, with its name.
struct T {
    bool                                                              flag{};
    std::unordered_set<int32>                                         first_values;
    T_Kind                                                            kind;
    std::unordered_set<int32>                                         second_values;
    std::unordered_map<Strings_T, std::list<std::pair<int32, int32>>> ranges;

    SML_OWN_LIFE(T);
    SML_RECORD(T, flag, first_values, kind, second_values, ranges);
};

}  // namespace sml::IL_Attribute
