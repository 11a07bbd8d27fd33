#pragma once
// Operations that can take long.

#include <sml/core/declare.hpp>
#include <sml/schema/QualifiedPrettyName.hpp>

namespace sml::Long_Operation {

/// An operation that can take long.
struct T_Long_Op_T {
    // clang-format off
    using arms = core::Arms<
        core::Arm<"FUNCTION", QualifiedPrettyName::T>,
        core::ElseArm<"LOOP", Strings_T>>;
    // clang-format on
    SML_VARIANT(T_Long_Op_T);
};

}  // namespace sml::Long_Operation
