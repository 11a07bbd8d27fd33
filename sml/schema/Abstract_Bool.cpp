#include <sml/schema/Abstract_Bool.hpp>

#include <sml/core/define.hpp>

namespace sml::Abstract_Bool {

SML_DEFINE_ENUM(T_Abstract_Bool);

}  // namespace sml::Abstract_Bool
