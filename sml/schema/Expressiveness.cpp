#include <sml/schema/Expressiveness.hpp>

#include <sml/core/define.hpp>

namespace sml::Expressiveness {

SML_DEFINE_ENUM(T_relation);
SML_DEFINE_ENUM(T_coefficients);
SML_DEFINE_ENUM(T_constant);
SML_DEFINE_VARIANT(T_relational_level);

}  // namespace sml::Expressiveness
