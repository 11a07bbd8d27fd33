// error: arms stand in ascending byte order of their names

#include <sml/core/declare.hpp>

using sml::core::Arm;

struct Variant {
    // Upper case comes before lower case.
#ifdef MISTAKE
    using arms = sml::core::Arms<Arm<"a">, Arm<"B">>;
#else
    using arms = sml::core::Arms<Arm<"B">, Arm<"a">>;
#endif
    SML_VARIANT(Variant);
};
