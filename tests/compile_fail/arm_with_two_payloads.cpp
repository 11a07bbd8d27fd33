// error: an arm has one payload: group several in a struct

#include <sml/core/declare.hpp>

using sml::core::Arm;

struct Variant {
#ifdef MISTAKE
    using arms = sml::core::Arms<Arm<"A", bool, std::int32_t>>;
#else
    using arms = sml::core::Arms<Arm<"A", std::pair<bool, std::int32_t>>>;
#endif
    SML_VARIANT(Variant);
};
