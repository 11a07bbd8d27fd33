#include <sml/schema/GlobalVariableProperty.hpp>

#include <sml/core/define.hpp>

namespace sml::GlobalVariableProperty {

SML_DEFINE_ENUM(T_CS_KIND);

}  // namespace sml::GlobalVariableProperty
