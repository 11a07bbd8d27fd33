#include <sml/schema/GUI_Check_Classification.hpp>

#include <sml/core/define.hpp>

namespace sml::GUI_Check_Classification {

SML_DEFINE_RECORD(T_GUI_Check_Event);
SML_DEFINE_RECORD(T_GUI_Input_Source);
SML_DEFINE_RECORD(T_GUI_Check_Classification);

}  // namespace sml::GUI_Check_Classification
