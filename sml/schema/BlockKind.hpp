#pragma once
// Kinds of blocks and of points on a path.

#include <sml/core/big_integer.hpp>
#include <sml/core/declare.hpp>
#include <sml/schema/QualifiedPrettySignature.hpp>

namespace sml::BlockKind {

/// What a block of code is.
struct T_BlockKind {
    // clang-format off
    using arms = core::Arms<
        core::Arm<"B_ELSE">,
        core::Arm<"B_FOR_LOOP">,
        core::Arm<"B_FUNCTION">,
        core::Arm<"B_IMPLICIT_ELSE">,
        core::Arm<"B_LABEL">,
        core::Arm<"B_SWITCH_CASE", BigInteger>,
        core::Arm<"B_SWITCH_DEFAULT">,
        core::Arm<"B_SWITCH_IMPLICIT_DEFAULT">,
        core::Arm<"B_THEN">,
        core::Arm<"B_UNREACHABLE">,
        core::Arm<"B_WHILE_LOOP">>;
    // clang-format on
    SML_VARIANT(T_BlockKind);
};

/// Where on a path an event stands.
struct T_ControlFlowPoint {
    struct CALLING_ALLOC_FUNCTION_parts {
        Strings_T            allocator_name;
        std::list<Strings_T> allocated_names;
        bool                 alloc_flag{};

        SML_FIELDS(CALLING_ALLOC_FUNCTION_parts, allocator_name, allocated_names, alloc_flag);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"BLOCK", T_BlockKind>,
        core::Arm<"CALLING_ALLOC_FUNCTION", CALLING_ALLOC_FUNCTION_parts>,
        core::Arm<"CALLING_FUNCTION", QualifiedPrettySignature::T>,
        core::Arm<"ENTERING_TASK", QualifiedPrettySignature::T>,
        core::Arm<"LOOP_ITERATION">,
        core::Arm<"NOT_BLOCK", T_BlockKind>,
        core::Arm<"RETURNING_FROM_FUNCTION", QualifiedPrettySignature::T>,
        core::Arm<"UNIT_FRONTIER">>;
    // clang-format on
    SML_VARIANT(T_ControlFlowPoint);
};

}  // namespace sml::BlockKind
