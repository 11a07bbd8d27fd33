// error: no arm has this name
// errors: 1
// lines: 20
// says: "ARCH_SIZE_".*"ARCH_SIZE"

#include <sml/schema/Atomicity_Condition.hpp>

std::int32_t use(sml::Atomicity_Condition::T_Atomicity_Condition const& condition) {
#ifdef MISTAKE
    return condition.arm<"ARCH_SIZE_">().size_kind;
#else
    return condition.arm<"ARCH_SIZE">().size_kind;
#endif
}
