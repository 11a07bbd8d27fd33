// error: arms stand in ascending byte order of their names

#include <sml/core/define.hpp>

using sml::core::Arm;

struct Variant {
    // Upper case comes before lower case.
#ifdef MISTAKE
    using arms = sml::core::Arms<Arm<"a">, Arm<"B", bool>>;
#else
    using arms = sml::core::Arms<Arm<"B", bool>, Arm<"a">>;
#endif
    SML_VARIANT(Variant);
};

SML_DEFINE_VARIANT(Variant);
