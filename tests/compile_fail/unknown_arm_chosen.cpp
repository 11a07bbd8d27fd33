// error: no arm has this name
// errors: 1
// lines: 20
// says: "Atomic".*"ATOMIC", "UNKNOWN", "ARCH_SIZE"

#include <sml/schema/Atomicity_Condition.hpp>

void use(sml::Atomicity_Condition::T_Atomicity_Condition& condition) {
#ifdef MISTAKE
    condition.choose<"Atomic">();
#else
    condition.choose<"ATOMIC">();
#endif
}
