#include <sml/schema/GUI_Events.hpp>

#include <sml/core/define.hpp>

namespace sml::GUI_Events::GUI_Event_Path_Step {

SML_DEFINE_RECORD(T);

}  // namespace sml::GUI_Events::GUI_Event_Path_Step
