#include <sml/schema/Variable_Value.hpp>

#include <sml/core/define.hpp>

namespace sml::Variable_Value {

SML_DEFINE_ENUM(T_Init_Mode);

}  // namespace sml::Variable_Value
