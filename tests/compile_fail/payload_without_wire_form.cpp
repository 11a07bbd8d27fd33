// error: this type has no wire form
// errors: 1

#include <sml/core/define.hpp>

struct Variant {
#ifdef MISTAKE
    using Payload = char;
#else
    using Payload = bool;
#endif

    using arms = sml::core::Arms<sml::core::Arm<"A">, sml::core::Arm<"B", Payload>>;
    SML_VARIANT(Variant);
};

SML_DEFINE_VARIANT(Variant);
