// error: only the last arm can be a catch-all arm

#include <sml/core/define.hpp>

using sml::core::Arm, sml::core::ElseArm;

struct Variant {
#ifdef MISTAKE
    using arms = sml::core::Arms<ElseArm<"A", bool>, ElseArm<"B", bool>>;
#else
    using arms = sml::core::Arms<Arm<"A", bool>, ElseArm<"B", bool>>;
#endif
    SML_VARIANT(Variant);
};

SML_DEFINE_VARIANT(Variant);
