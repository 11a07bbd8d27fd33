// error: no arm has this name
// errors: 1
// lines: 20
// says: "ATOMI".*"ATOMIC"

#include <sml/schema/Atomicity_Condition.hpp>

bool use(sml::Atomicity_Condition::T_Atomicity_Condition const& condition) {
#ifdef MISTAKE
    return condition.holds<"ATOMI">();
#else
    return condition.holds<"ATOMIC">();
#endif
}
