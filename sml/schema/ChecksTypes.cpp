#include <sml/schema/ChecksTypes.hpp>

#include <sml/core/define.hpp>

namespace sml::ChecksTypes {

SML_DEFINE_ENUM(T_Scalar_Or_Float);

}  // namespace sml::ChecksTypes
