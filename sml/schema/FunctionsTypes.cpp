#include <sml/schema/FunctionsTypes.hpp>

#include <sml/core/define.hpp>

namespace sml::FunctionsTypes {

SML_DEFINE_ENUM(T_Body_Kind);

}  // namespace sml::FunctionsTypes
