#include <sml/schema/IL_Attribute.hpp>

#include <sml/core/define.hpp>

namespace sml::IL_Attribute {

SML_DEFINE_RECORD(T_Kind::NUMERICAL_ATTRIBUTE_args);
SML_DEFINE_VARIANT(T_Kind);
SML_DEFINE_RECORD(T);
SML_DEFAULT_LIFE(T);

}  // namespace sml::IL_Attribute
