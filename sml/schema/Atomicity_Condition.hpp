#pragma once
// Conditions under which an access is atomic on the target.

#include <sml/core/big_integer.hpp>
#include <sml/core/declare.hpp>

namespace sml::Atomicity_Condition {

/// When an access is atomic on the target.
struct T_Atomicity_Condition {
    struct ARCH_SIZE_args {
        int32      size_kind{};
        BigInteger size;

        SML_RECORD(ARCH_SIZE_args, size_kind, size);
    };
    struct FUNCTION_CALL_args {
        Strings_T function_name;

        SML_RECORD(FUNCTION_CALL_args, function_name);
    };
    struct MULTI_INSTR_args {
        std::optional<Strings_T> instruction;

        SML_RECORD(MULTI_INSTR_args, instruction);
    };

    // clang-format off
    using arms = core::Arms<
        core::Arm<"ARCH_SIZE", ARCH_SIZE_args>,
        core::Arm<"ATOMIC">,
        core::Arm<"FUNCTION_CALL", FUNCTION_CALL_args>,
        core::Arm<"MULTI_INSTR", MULTI_INSTR_args>,
        core::Arm<"UNKNOWN">>;
    // clang-format on
    SML_VARIANT(T_Atomicity_Condition);
};

}  // namespace sml::Atomicity_Condition
