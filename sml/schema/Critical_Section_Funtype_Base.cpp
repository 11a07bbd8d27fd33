#include <sml/schema/Critical_Section_Funtype_Base.hpp>

#include <sml/core/define.hpp>

namespace sml::Critical_Section_Funtype_Base {

SML_DEFINE_ENUM(T);

}  // namespace sml::Critical_Section_Funtype_Base
