#pragma once
// Values on the path that explains a check.

#include <sml/core/big_integer.hpp>
#include <sml/core/declare.hpp>

namespace sml::Event_Path::Event_Value {

/// The value attached to a step of a path.
struct T_value {
    struct WithValue_args {
        std::optional<std::pair<Strings_T, Strings_T>> string_pair;
        Strings_T                                      first_string;

        SML_RECORD(WithValue_args, string_pair, first_string);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"LoopIteration", BigInteger>,
        core::ElseArm<"WithValue", WithValue_args>>;
    // clang-format on
    SML_VARIANT(T_value);
};

}  // namespace sml::Event_Path::Event_Value
