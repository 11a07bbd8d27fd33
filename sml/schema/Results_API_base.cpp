#include <sml/schema/Results_API_base.hpp>

#include <sml/core/define.hpp>

namespace sml::Results_API_base::Check_Color_Type {

SML_DEFINE_ENUM(T_Check_Color);
}  // namespace sml::Results_API_base::Check_Color_Type

namespace sml::Results_API_base::GUI_Check_Classification_base {

SML_DEFINE_ENUM(T_GUI_Check_Classification_Class);

}  // namespace sml::Results_API_base::GUI_Check_Classification_base
