// error: use of deleted function|selected deleted operator

#include <sml/schema/Atomicity_Condition.hpp>

using sml::Atomicity_Condition::T_Atomicity_Condition;

void use(T_Atomicity_Condition& condition, T_Atomicity_Condition const& other) {
#ifdef MISTAKE
    condition.tag = other.tag;
#else
    condition = other;
#endif
}
