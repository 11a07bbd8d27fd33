#pragma once
// Paths from a variable to the part that an access touches.

#include <sml/core/declare.hpp>

namespace sml::AccessPath::Selector {

/// One step from a variable inward.
struct T_private_selector {
    struct Field_parts {
        Strings_T                                  field_name;
        std::optional<std::pair<Strings_T, int32>> field_owner;

        SML_FIELDS(Field_parts, field_name, field_owner);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"Array_element", std::optional<int32>>,
        core::ElseArm<"Field", Field_parts>>;
    // clang-format on
    SML_VARIANT(T_private_selector);
};

}  // namespace sml::AccessPath::Selector
