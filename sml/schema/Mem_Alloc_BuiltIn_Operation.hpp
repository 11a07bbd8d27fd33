#pragma once
// Built-in memory allocations.

#include <sml/core/declare.hpp>

namespace sml::Mem_Alloc_BuiltIn_Operation {

/// Whether an allocation can initialise.
struct T_can_initialize {
    bool flag{};

    SML_RECORD(T_can_initialize, flag);
};

/// The setting of a stubbed allocation.
struct T_stub_mem_alloc_builtin_param {
    bool flag{};

    SML_RECORD(T_stub_mem_alloc_builtin_param, flag);
};

/// A built-in memory allocation.
struct T_Operation {
    // clang-format off
    using arms = core::Arms<
        core::Arm<"Alloca", T_can_initialize>,
        core::Arm<"Calloc">,
        core::Arm<"Malloc", T_can_initialize>,
        core::Arm<"New_Array_CPP">,
        core::Arm<"New_CPP">,
        core::Arm<"Realloc">,
        core::Arm<"Stub", T_stub_mem_alloc_builtin_param>,
        core::Arm<"Valloc">>;
    // clang-format on
    SML_VARIANT(T_Operation);
};

}  // namespace sml::Mem_Alloc_BuiltIn_Operation
