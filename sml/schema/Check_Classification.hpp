#pragma once
// The analyser's view of checks.

#include <sml/core/declare.hpp>

namespace sml::Check_Classification {

/// The analyser's view of a check.
struct T_Check_Classification {
    struct INPUT_IMPACT_args {
        Strings_T first_string;
        int32     first_int{};

        SML_RECORD(INPUT_IMPACT_args, first_string, first_int);
        SML_API std::uint64_t hash() const;
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"CRITICAL_CHK">,
        core::ElseArm<"INPUT_IMPACT", INPUT_IMPACT_args>>;
    // clang-format on
    SML_VARIANT(T_Check_Classification);
};

}  // namespace sml::Check_Classification
