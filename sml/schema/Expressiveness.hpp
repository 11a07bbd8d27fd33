#pragma once
// How much the relations of an analysis can express.

#include <sml/core/declare.hpp>

namespace sml::Expressiveness {

/// The relations that an analysis can express.
SML_ENUM(T_relation, Disequalities, Equalities, Inequalities, Modulo);

/// The coefficients of such a relation.
SML_ENUM(T_coefficients, Any, Potential, Unary);

/// The constant of such a relation.
SML_ENUM(T_constant, Z, Zero);

/// How many variables a relation can hold.
struct T_relational_level {
    // clang-format off
    using arms = core::Arms<
        core::Arm<"Bound", int32>,
        core::Arm<"Exact", int32>,
        core::Arm<"UnBound">>;
    // clang-format on
    SML_VARIANT(T_relational_level);
};

}  // namespace sml::Expressiveness
