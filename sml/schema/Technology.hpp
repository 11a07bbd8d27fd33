#pragma once
// The techniques behind results.

#include <sml/core/declare.hpp>
#include <sml/schema/Expressiveness.hpp>

namespace sml::Technology::Technics {

/// How calls are analysed.
SML_ENUM(T_Interprocedural_Technology, FULL_INLINE, SUMMARIES);

/// How loops are analysed.
SML_ENUM(T_Loop_Technology, UNROLLING, WIDENING);

/// The settings of a forward analysis.
struct T {
    std::optional<
        std::tuple<Expressiveness::T_relational_level,
                   std::list<std::pair<Expressiveness::T_relation, Expressiveness::T_constant>>,
                   Expressiveness::T_coefficients>>
          expressiveness;
    int32 first_int{};
    int32 second_int{};

    SML_RECORD(T, expressiveness, first_int, second_int);
};

}  // namespace sml::Technology::Technics

namespace sml::Technology {

/// The technique behind a result.
struct T {
    // clang-format off
    using arms = core::Arms<
        core::Arm<"ADA">,
        core::Arm<"BACKWARD">,
        core::Arm<"DATA_FLOW">,
        core::Arm<"FORWARD", Technics::T>,
        core::Arm<"GMOD">,
        core::Arm<"MEMORY_DOMAIN">,
        core::Arm<"MIDDLE_END">,
        core::Arm<"QDVX">,
        core::Arm<"UNKNOWN">>;
    // clang-format on
    SML_VARIANT(T);
};

}  // namespace sml::Technology
