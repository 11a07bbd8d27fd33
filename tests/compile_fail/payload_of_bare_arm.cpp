// error: this arm has no payload

#include <sml/schema/Atomicity_Condition.hpp>

void use(sml::Atomicity_Condition::T_Atomicity_Condition& condition) {
#ifdef MISTAKE
    condition.arm<"ATOMIC">();
#else
    condition.arm<"ARCH_SIZE">();
#endif
}
