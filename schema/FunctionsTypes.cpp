#include "schema/FunctionsTypes.hpp"

#include "core/define.hpp"

namespace sml::FunctionsTypes {

SML_DEFINE_ENUM(T_Body_Kind);

}  // namespace sml::FunctionsTypes
