#pragma once
// What protects accesses to shared data.

#include <sml/core/declare.hpp>
#include <sml/schema/QualifiedPrettySignature.hpp>

namespace sml::AccessProtections {

/// What protects an access to shared data.
struct T_AccessProtections {
    struct CRITICAL_SECTION_args {
        QualifiedPrettySignature::T first_signature;
        Strings_T                   section_name;
        QualifiedPrettySignature::T second_signature;

        SML_RECORD(CRITICAL_SECTION_args, first_signature, section_name, second_signature);
        SML_API std::uint64_t hash() const;
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"ACCESS_PATTERN">,
        core::Arm<"CRITICAL_SECTION", CRITICAL_SECTION_args>,
        core::Arm<"DESIGN_PATTERN">,
        core::Arm<"DISABLED_INTERRUPTS">,
        core::Arm<"RENDEZ_VOUS">,
        core::Arm<"RESOURCE", Strings_T>,
        core::Arm<"TEMPORAL_EXCLUSION">>;
    // clang-format on
    SML_VARIANT(T_AccessProtections);
};

}  // namespace sml::AccessProtections
