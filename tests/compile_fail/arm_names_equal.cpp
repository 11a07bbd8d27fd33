// error: arms stand in ascending byte order of their names

#include <sml/core/define.hpp>

using sml::core::Arm;

struct Variant {
#ifdef MISTAKE
    using arms = sml::core::Arms<Arm<"A">, Arm<"A", bool>>;
#else
    using arms = sml::core::Arms<Arm<"A">, Arm<"AA", bool>>;
#endif
    SML_VARIANT(Variant);
};

SML_DEFINE_VARIANT(Variant);
