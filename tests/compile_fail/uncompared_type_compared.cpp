// error: no match for .operator==|invalid operands to binary expression

#include <sml/schema/IL.hpp>

bool use(sml::IL::T_Annotation const& a, sml::IL::T_Annotation const& b) {
#ifdef MISTAKE
    return a == b;
#else
    return a.tag == b.tag;
#endif
}
