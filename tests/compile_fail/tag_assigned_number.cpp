// error: no match for .operator=|no viable overloaded .=

#include <sml/schema/Atomicity_Condition.hpp>

void use(sml::Atomicity_Condition::T_Atomicity_Condition& condition) {
#ifdef MISTAKE
    condition.tag = 1;
#else
    condition.choose_tag(1);
#endif
}
